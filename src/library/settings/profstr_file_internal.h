// SPDX-License-Identifier: Apache-2.0
//
// How the parts of the module profstr read and write a whole settings file.
//
// A file of settings that cannot be read or written must not end a program, nor cost what it holds: the
// failure is told by the module's own handler, behind the read or write itself, and the program goes on. An
// error that was pending before stays the caller's. The box comes once for a file and a code until that file
// is read, or written, again, and for a change that is lost once for each thing that the user does: a start, or a
// dialog, that writes ten settings into a read-only file tells it once, and the next dialog tells it again.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn::detail {

// The module's onerror.
void settingsError(std::int32_t code);

// The text of the file; valid until the next call. A missing file and an empty name read as empty. `readable`
// is false when the file is there and cannot be read: nothing may be written then.
std::string_view readProfile(const std::string& file, bool& readable);
// The same as a text to change: what cannot be read is a change that is lost.
std::string textOf(const std::string& file, bool& readable);
// Likewise; a missing or empty file gives its origin, if it has one.
std::string textToChange(const std::string& file, bool& readable);
bool writeProfile(const std::string& file, std::string_view text);

}  // namespace tarn::detail
