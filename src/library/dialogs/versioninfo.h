// SPDX-License-Identifier: Apache-2.0
//
// The version block of a program: company, copyright and version as they stand in the resource file of its main class,
//
//     VS_VERSION_INFO VERSIONINFO
//         FILEVERSION 1,0,0,0
//         ...
//                 VALUE "CompanyName", "Ann & Co.\0"
//
// Its name may be a number, and other tools write it with languages, flags and comments of their own. A quote in a text
// stands there twice, or behind a backslash. Control characters, which no text of a resource can hold, become blanks.
// Cost: linear in the text; loading and saving read and write the resource file.
#pragma once

#include <string>
#include <string_view>

namespace tarn {

inline constexpr std::string_view DefaultVersionName = "VS_VERSION_INFO";
inline constexpr const char* ProgramPropertiesTitle = "Program Properties";

struct VersionFields {
    std::string comments = {}, company = {}, copyright = {}, trademarks = {}, product = {}, description = {};
    std::string version = {};  // four numbers parted by blanks
    bool operator==(const VersionFields&) const = default;
};

// What is not there is empty.
VersionFields VERSIONINFOTOFIELDS(std::string_view text);
// Numbers that are missing are 0.
std::string FIELDSTOVERSIONINFO(const std::string& name, const VersionFields& fields,
                                const std::string& fileStem);
std::string GETDEFAULTVERSIONINFO(const std::string& fileStem);  // the block of a new program
// The block with these fields, which is whole. One that this program wrote, for whatever `fileStem`, is written anew.
// Any other one keeps all that the fields do not change: a text of several languages changes where it is the one that
// was read, and another number or text of a version where it says the old one.
std::string CHANGEVERSIONINFO(const std::string& block, const std::string& name, const VersionFields& fields,
                              const std::string& fileStem);
// Whether a description is that of a new program, made by any version of this system.
bool ISDEFAULTDESCRIPTION(std::string_view description);
std::string REMOVETRAILINGNULL(std::string_view text);  // without the two characters `\0` at the end

struct LoadedVersion {
    VersionFields fields;
    bool ok = false;     // otherwise what is wrong was told
    bool found = false;  // there is a block of that name
};
// The block of the resource file beside the main file; no name stands for no block. `title` is that of the messages.
LoadedVersion LOADVERSIONINFO(const std::string& mainFile, const std::string& name,
                              const std::string& title = ProgramPropertiesTitle);
// Into the block of that name, or a new one. False, and told, if it could not be written; the file is as it was then.
bool SAVEVERSIONINFO(const std::string& mainFile, const std::string& name, const VersionFields& fields,
                     const std::string& title = ProgramPropertiesTitle);

}  // namespace tarn
