// SPDX-License-Identifier: Apache-2.0
#include "library/dialogs/versioninfo.h"

#include "kernel/windows/resources.h"
#include "library/system/product.h"
#include "library/system/system.h"
#include "os/text/ascii.h"

#include <array>

MODULE("dlgutil")

namespace tarn {
namespace {

constexpr std::string_view NullMark = "\\0";

struct Key {
    std::string_view name;
    std::string VersionFields::*field;
};
constexpr Key keys[] = {
    {"Comments", &VersionFields::comments},        {"CompanyName", &VersionFields::company},
    {"LegalCopyright", &VersionFields::copyright}, {"LegalTrademarks", &VersionFields::trademarks},
    {"ProductName", &VersionFields::product},      {"FileDescription", &VersionFields::description},
};

// ---- reading ----

std::string plain(const std::string& token) {
    return REMOVETRAILINGNULL(STRREPLACE(STRREMOVEQUOTES(token), "\"\"", "\""));
}

void takeValue(std::string_view line, VersionFields& fields) {
    std::array<std::string, 4> tokens;
    std::size_t position = 1;
    for (std::string& token : tokens) token = NextWord(line, position);
    if (!STREQUAL(tokens[0], "VALUE")) return;
    for (const Key& key : keys)
        if (STREQUAL(tokens[1], STRADDQUOTES(std::string(key.name)))) fields.*key.field = plain(tokens[3]);
}

void takeVersion(std::string_view line, VersionFields& fields) {
    std::size_t position = 1;
    static_cast<void>(NextWord(line, position));
    std::string numbers;
    for (std::string token = NextWord(line, position); !token.empty(); token = NextWord(line, position))
        if (token != ",") numbers += " " + token;
    fields.version = STRLTRIM(numbers);
}

// ---- writing ----

std::string numbersWith(const std::string& version, std::string_view separator) {
    std::string rest = version, text;
    for (int i = 0; i < 4; ++i) {
        const StringPair parts = STRSPLIT(rest);
        text += (i > 0 ? std::string(separator) : "") + (parts.left.empty() ? "0" : parts.left);
        rest = parts.right;
    }
    return text;
}

std::string valueLine(std::string_view key, const std::string& text) {
    std::string value = STRREPLACE(text, "\"", "\"\"");
    for (char& c : value)
        if (static_cast<unsigned char>(c) < ' ') c = ' ';
    return "            VALUE \"" + std::string(key) + "\", \"" + value + std::string(NullMark) + "\"\n";
}

std::string blockOf(const std::string& name, const std::string& version, const std::string& values) {
    const std::string numbers = numbersWith(version, ",");
    return name + " VERSIONINFO\n    FILEVERSION " + numbers + "\n    PRODUCTVERSION " + numbers +
           "\n    FILEFLAGSMASK 0x3f\n    FILEFLAGS 0x0\n    FILEOS 0x10004\n    FILETYPE 0x1\n"
           "    FILESUBTYPE 0x0\nBEGIN\n    BLOCK \"StringFileInfo\"\n    BEGIN\n        BLOCK \"080904b0\"\n"
           "        BEGIN\n" +
           values +
           "        END\n    END\n    BLOCK \"VarFileInfo\"\n    BEGIN\n"
           "        VALUE \"Translation\", 0x809, 1200\n    END\nEND\n";
}

}  // namespace

std::string REMOVETRAILINGNULL(std::string_view text) {
    FRAME(REMOVETRAILINGNULL);
    return std::string(text.ends_with(NullMark) ? text.substr(0, text.size() - NullMark.size()) : text);
}

VersionFields VERSIONINFOTOFIELDS(std::string_view text) {
    FRAME(VERSIONINFOTOFIELDS);
    STAMP();
    VersionFields fields;
    while (!text.empty()) {
        const std::string line = STRTRIM(ascii::takeLine(text));
        if (STREQUAL(STRLEFT(line, 11), "FILEVERSION"))
            takeVersion(line, fields);
        else
            takeValue(line, fields);
    }
    return fields;
}

std::string FIELDSTOVERSIONINFO(const std::string& name, const VersionFields& fields,
                                const std::string& fileStem) {
    FRAME(FIELDSTOVERSIONINFO);
    STAMP();
    const std::string version = numbersWith(fields.version, ".");
    return blockOf(name, fields.version,
                   valueLine("Comments", fields.comments) + valueLine("CompanyName", fields.company) +
                       valueLine("FileDescription", fields.description) + valueLine("FileVersion", version) +
                       valueLine("InternalName", fileStem) + valueLine("LegalCopyright", fields.copyright) +
                       valueLine("LegalTrademarks", fields.trademarks) +
                       valueLine("OriginalFilename", fileStem) + valueLine("ProductName", fields.product) +
                       valueLine("ProductVersion", version));
}

namespace {

std::string createdBy() {
    return "Created by " + std::string(ProductWord) + " ";
}

}  // namespace

bool ISDEFAULTDESCRIPTION(std::string_view description) {
    FRAME(ISDEFAULTDESCRIPTION);
    const std::string start = createdBy();
    return description.starts_with(start) &&
           description.find_first_not_of("0123456789.", start.size()) == std::string_view::npos;
}

std::string GETDEFAULTVERSIONINFO(const std::string& fileStem) {
    FRAME(GETDEFAULTVERSIONINFO);
    STAMP();
    const std::string number = std::string(ProductVersion);
    const std::string numbers = STRREPLACE(number, ".", " ") + " " + std::string(ProductBuild) + " 0";
    const std::string version = numbersWith(numbers, ".");
    return blockOf(std::string(DefaultVersionName), numbers,
                   valueLine("CompanyName", "") + valueLine("FileDescription", createdBy() + number) +
                       valueLine("FileVersion", version) + valueLine("InternalName", fileStem) +
                       valueLine("OriginalFilename", fileStem) +
                       valueLine("ProductName", fileStem + " Application") +
                       valueLine("ProductVersion", version));
}

// ---- files ----

namespace {

void tell(const std::string& title, const std::string& message) {
    MsgBox(title, message, "OK", BoxIcon::Error);
}

bool isThere(const std::string& title, const std::string& mainFile, const std::string& otherwise) {
    if (FileSize(mainFile) >= 0) return true;
    tell(title, otherwise);
    return false;
}

// One with its extension in upper case counts where there is none in lower case.
std::string resourcesOf(const std::string& mainFile) {
    std::string file = FILECHANGEEXT(mainFile, ".rc"), upper = FILECHANGEEXT(mainFile, ".RC");
    return FileSize(file) < 0 && FileSize(upper) >= 0 ? upper : file;
}

}  // namespace

LoadedVersion LOADVERSIONINFO(const std::string& mainFile, const std::string& name,
                              const std::string& title) {
    FRAME(LOADVERSIONINFO);
    STAMP();
    LoadedVersion loaded;
    if (!isThere(title, mainFile,
                 "The Program Properties are not available because there is no main file.\n"
                 "Open a file in the program window then try again."))
        return loaded;
    const std::string file = resourcesOf(mainFile);
    STAMP();
    const ResourceText block =
        FileSize(file) > 0 && !name.empty() ? ResourceInfo(file, "VERSIONINFO", name) : ResourceText();
    STAMP();
    if (!block.error.empty()) {
        tell(title, "Cannot load the Program Properties. The following error occurred:\n" + block.error);
        return loaded;
    }
    loaded.ok = true;
    loaded.found = !block.text.empty();
    if (loaded.found) loaded.fields = VERSIONINFOTOFIELDS(block.text);
    return loaded;
}

bool SAVEVERSIONINFO(const std::string& mainFile, const std::string& name, const VersionFields& fields,
                     const std::string& title) {
    FRAME(SAVEVERSIONINFO);
    STAMP();
    if (!isThere(title, mainFile,
                 "The Program Properties cannot be updated because there is no main file.\n"
                 "Open a file in the program window then try again."))
        return false;
    const std::string text = FIELDSTOVERSIONINFO(name, fields, FILEBASENAME(mainFile));
    STAMP();
    const std::string error = ResourceWriteText(resourcesOf(mainFile), text);
    STAMP();
    if (!error.empty())
        tell(title, "Cannot save the Program Properties. The following error occurred:\n" + error);
    return error.empty();
}

}  // namespace tarn
