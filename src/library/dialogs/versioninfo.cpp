// SPDX-License-Identifier: Apache-2.0
#include "library/dialogs/versioninfo.h"

#include "kernel/windows/resources.h"
#include "library/dialogs/versioninfo_internal.h"
#include "library/settings/profstr.h"
#include "library/system/product.h"
#include "library/system/system.h"

MODULE("dlgutil")

namespace tarn {
namespace detail {

std::string versionNumbers(const std::string& version, std::string_view separator) {
    std::string rest = version, text;
    for (int i = 0; i < 4; ++i) {
        const StringPair parts = STRSPLIT(rest);
        text += (i > 0 ? std::string(separator) : "") + (parts.left.empty() ? "0" : parts.left);
        rest = parts.right;
    }
    return text;
}

std::string versionValueLine(std::string_view key, const std::string& text) {
    return "            VALUE \"" + std::string(key) + "\", " + quotedVersionText(text, true) + "\n";
}

}  // namespace detail

namespace {

using detail::versionNumbers;
using detail::versionValueLine;

std::string blockOf(const std::string& name, const std::string& version, const std::string& values) {
    const std::string numbers = versionNumbers(version, ",");
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
    return std::string(
        text.ends_with(detail::NullMark) ? text.substr(0, text.size() - detail::NullMark.size()) : text);
}

VersionFields VERSIONINFOTOFIELDS(std::string_view text) {
    FRAME(VERSIONINFOTOFIELDS);
    STAMP();
    VersionFields fields;
    const detail::VersionParts parts = detail::versionPartsOf(text);
    for (const detail::VersionNumbers& numbers : parts.numbers)
        if (STREQUAL(numbers.word, "FILEVERSION")) fields.version = numbers.text;
    for (const detail::VersionValue& value : parts.values)
        for (const detail::VersionKey& key : detail::versionKeys)
            if (STREQUAL(value.key, key.name)) fields.*key.field = value.text;
    return fields;
}

std::string FIELDSTOVERSIONINFO(const std::string& name, const VersionFields& fields,
                                const std::string& fileStem) {
    FRAME(FIELDSTOVERSIONINFO);
    STAMP();
    const std::string version = versionNumbers(fields.version, ".");
    return blockOf(
        name, fields.version,
        versionValueLine("Comments", fields.comments) + versionValueLine("CompanyName", fields.company) +
            versionValueLine("FileDescription", fields.description) +
            versionValueLine("FileVersion", version) + versionValueLine("InternalName", fileStem) +
            versionValueLine("LegalCopyright", fields.copyright) +
            versionValueLine("LegalTrademarks", fields.trademarks) +
            versionValueLine("OriginalFilename", fileStem) + versionValueLine("ProductName", fields.product) +
            versionValueLine("ProductVersion", version));
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
    const std::string version = versionNumbers(numbers, ".");
    return blockOf(std::string(DefaultVersionName), numbers,
                   versionValueLine("CompanyName", "") +
                       versionValueLine("FileDescription", createdBy() + number) +
                       versionValueLine("FileVersion", version) + versionValueLine("InternalName", fileStem) +
                       versionValueLine("OriginalFilename", fileStem) +
                       versionValueLine("ProductName", fileStem + " Application") +
                       versionValueLine("ProductVersion", version));
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
    const std::string file = resourcesOf(mainFile), stem = FILEBASENAME(mainFile);
    const ResourceText old = ResourceInfo(file, "VERSIONINFO", name);
    STAMP();
    const std::string text = old.text.empty() ? FIELDSTOVERSIONINFO(name, fields, stem)
                                              : CHANGEVERSIONINFO(old.text, name, fields, stem);
    STAMP();
    const std::string error = old.error.empty() ? ResourceWriteText(file, text) : old.error;
    STAMP();
    if (!error.empty())
        tell(title, "Cannot save the Program Properties. The following error occurred:\n" + error);
    return error.empty();
}

}  // namespace tarn
