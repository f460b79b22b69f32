// SPDX-License-Identifier: Apache-2.0
#include "library/ship/issscript.h"

#include "library/settings/profstr.h"
#include "library/ship/copylist.h"
#include "library/system/system.h"

MODULE("copyutil", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

std::string withoutControls(std::string text) {
    for (char& c : text)
        if (static_cast<unsigned char>(c) < ' ') c = ' ';
    return text;
}

std::string oneLine(const std::string& text) {
    return STRTRIM(withoutControls(text));
}

// What stands between quotes.
std::string inQuotes(const std::string& text) {
    return STRREPLACE(withoutControls(text), "\"", "\"\"");
}

std::string quoted(const std::string& text) {
    return STRADDQUOTES(inQuotes(text));
}

std::string versionOf(const std::string& text, const std::string& numbers) {
    return text.empty() ? STRWORD(numbers, 1) + "." + STRWORD(numbers, 2) : oneLine(text);
}

struct Names {
    std::string name, exe;
    bool hasIcon;
};

std::string iconLines(const Names& names) {
    const std::string start = "\"; Filename:\"{app}\\" + inQuotes(names.exe) + "\"; WorkingDir:\"{app}\";";
    const std::string icon = names.hasIcon ? " IconFilename:\"{app}\\mainicon.ico\";\n" : "\n";
    std::string lines = "[Icons]\nName:\"{group}\\" + inQuotes(names.name) + start + icon +
                        "Name:\"{group}\\Uninstall\"; Filename:\"{uninstallexe}\";\n";
    if (names.hasIcon) lines += "Name:\"{commondesktop}\\" + inQuotes(names.name) + start + icon;
    return lines + "\n";
}

std::string fileLines(const std::string& files, const std::string& iconFile) {
    std::string lines = "[Files]\n";
    if (!iconFile.empty())
        lines += "Source:" + quoted(iconFile) + "; DestDir:\"{app}\\\"; DestName:\"mainicon.ico\";\n";
    const std::string list = files + "\n";
    for (int i = 1; i <= STRLINES(list); ++i) {
        const std::string path = COPYPATH(STRLINE(list, i));
        if (!path.empty()) lines += "Source:" + quoted(path) + "; DestDir:\"{app}\\\";\n";
    }
    return lines;
}

}  // namespace

std::string CREATEISSSCRIPT(const std::string& company, const std::string& copyright, const std::string&,
                            const std::string& description, const std::string& versionText,
                            const std::string& version, const std::string& fileList,
                            const std::string& mainExe, const std::string& iconFile) {
    FRAME(CREATEISSSCRIPT);
    const std::string name = oneLine(FILEBASENAME(mainExe));
    const Names names{name, name + std::string(EXT_EXE), !iconFile.empty()};
    return "[Setup]\nAppName=" + name + "\nAppVerName=" + oneLine(description) + "\nAppId=" + name +
           "\nDefaultDirName={pf}\\" + name + "\nDefaultGroupName=" + name +
           "\nAppPublisher=" + oneLine(company) + "\nAppCopyright=" + oneLine(copyright) +
           "\nAppVersion=" + versionOf(versionText, version) +
           "\nWizardImageFile=compiler:wizmodernimage-is.bmp\n"
           "WizardSmallImageFile=compiler:wizmodernsmallimage-is.bmp\n"
           "Compression=lzma/normal\n\n"
           "[Dirs]\nName:\"{app}\"; Permissions:authusers-modify;\n\n"
           "[Languages]\nName:\"english\"; MessagesFile:\"compiler:Default.isl\"\n\n" +
           iconLines(names) + fileLines(fileList, iconFile);
}

}  // namespace tarn
