// SPDX-License-Identifier: Apache-2.0
//
// The registry: named settings under keys, shared by the environment and the programs it makes. It is one
// file, registry.ini in the user's settings folder:
//
//     [SOFTWARE\Microsoft\Windows\CurrentVersion\App Paths\ide.exe]     the whole key
//     =/opt/tarnwick/ide.exe                                            the key's default value
//     Version=1.3                                                      a named value
//
// Keys are paths with `\` between their parts; a `\` at either end or a second one in a row does not count.
// Keys and names compare without regard to the case of the letters a to z. A value may hold any bytes. In
// the file `\r`, `\n` and `\\` stand for carriage return, line feed and backslash of names and values, and
// `\` before any other character for that character. Lines of another form are kept as they are.
//
// Each operation reads the file again, so that programs see each other's settings; nothing stays open. A
// missing or unreadable file is an empty registry. Cost: linear in the size of the file. Saves survive the
// death of the process, not that of the machine.
#pragma once

#include <cstdint>
#include <string>

namespace tarn::platform {

namespace types {
// What is known of a value.
struct RegInfo {
    bool exists = false;
    std::int64_t length = 0;  // bytes
    bool number = false;      // a whole decimal number, with a sign or without
};
}  // namespace types
using namespace types;

// Whether the key, or one below it, is in the registry.
bool RegKeyExists(const std::string& key);
// The value; empty if it is absent. An empty name means the key's default value.
std::string RegGetSetting(const std::string& key, const std::string& name);
// Stores a value, and makes the key if it is missing. Writes nothing if the value is there already. The
// result is a text that says what failed, empty on success; on failure the registry is as it was. A key must
// not be empty nor hold a line break.
std::string RegSaveSetting(const std::string& key, const std::string& name, const std::string& value);
// Removes a value; the key stays. A value that is absent is no error. The result is as for `RegSaveSetting`.
std::string RegDeleteSetting(const std::string& key, const std::string& name);
// The keys directly below `key`, without its path, one a line (no line feed after the last), in the order of
// the file.
std::string RegGetAllSections(const std::string& key);
// The values of `key`, one a line in the form name=value as they stand in the file (escaped, so that each is
// one line).
std::string RegGetAllSettings(const std::string& key);
RegInfo RegGetSettingInfo(const std::string& key, const std::string& name);

}  // namespace tarn::platform
