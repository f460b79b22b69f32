// SPDX-License-Identifier: Apache-2.0
//
// Profile strings over files: each call reads the whole file and a change writes the whole file (see
// initext.h for what happens to its text). A file that is there and cannot be read is never written: its text
// would be lost.
#include "library/settings/profstr.h"

#include "kernel/run/errors.h"
#include "kernel/run/fileerrors.h"
#include "kernel/windows/useracts.h"
#include "library/settings/profstr_file_internal.h"
#include "library/system/system.h"
#include "os/files.h"
#include "os/process.h"
#include "os/text/ascii.h"
#include "os/text/initext.h"

#include <algorithm>
#include <map>
#include <new>
#include <stdexcept>
#include <vector>

MODULE("profstr", tarn::detail::settingsError, tarn::LeaveErrors)

namespace tarn {
namespace detail {

namespace {

constexpr std::size_t FirstRoom = 64 << 10, KeptRoom = 1 << 20;

// Reads to the end into `room`, which grows as needed; `size` is what was read.
os::FileError readAll(os::Handle handle, std::vector<char>& room, std::size_t& size) {
    for (;;) {
        if (size == room.size()) room.resize(std::max(FirstRoom, 2 * size));
        std::size_t got = 0;
        const os::FileError error = os::files().read(handle, static_cast<std::int64_t>(size),
                                                     room.data() + size, room.size() - size, got);
        if (error != os::FileError::None || got == 0) return error;
        size += got;
    }
}

os::FileError readWhole(const std::string& file, std::vector<char>& room, std::size_t& size) {
    os::Handle handle = -1;
    os::FileError error = os::files().open(os::native(file), os::OpenMode::Read, 0, handle);
    if (error != os::FileError::None) return error;
    try {
        error = readAll(handle, room, size);
    } catch (const std::bad_alloc&) {
        error = os::FileError::ReadFailed;
    } catch (const std::length_error&) {
        error = os::FileError::ReadFailed;
    }
    os::files().close(handle);
    return error;
}

// What the handler says about the failure that it is called for, and what was told before.
struct Failure {
    std::string advice;
    bool told = false;
};
Failure failure;

std::map<std::string, ProfileOrigin>& origins() {
    static std::map<std::string, ProfileOrigin> all;
    return all;
}

// The failures of one kind that the user knows, by the file's name.
struct Knowledge {
    std::int32_t code = 0;
    std::uint64_t acts = 0;  // what the user had done by then
};
using Told = std::map<std::string, Knowledge>;
Told toldReads, toldWrites;

enum class Lost { Nothing, Change };

bool isKnown(const Told& told, const std::string& file, std::int32_t code, Lost lost) {
    const auto known = told.find(file);
    if (known == told.end() || known->second.code != code) return false;
    return lost == Lost::Nothing || known->second.acts == userActs();
}

// Ends a read or a write: behind a failure, what a stamp on its line would do.
void settle(Told& told, const std::string& file, std::int32_t code, const std::string& advice, Lost lost) {
    if (code == 0) {
        if (!told.empty()) told.erase(file);
        return;
    }
    if (ErrorCell() != 0) return;
    failure = {advice, isKnown(told, file, code, lost)};
    SetError(code);
    Stamp(0, ReportErrors, settingsError);
    const bool blocked = ErrorCell() == code;  // another report goes on: this one is lost, and may come later
    if (blocked)
        ContinueAfterError();
    else if (!failure.told)
        told[file] = {code, userActs()};  // what was pressed in the box is no act of its own
}

std::string readAdvice(const std::string& file) {
    return "The settings in '" + file +
           "' were not read, and nothing is written there. Check that you may read this file, and try again.";
}

std::string writeAdvice(const std::string& file, const os::SaveResult& result) {
    if (!result.rescueCopy.empty())
        return "The settings in '" + file + "' may be damaged. Copy '" + result.rescueCopy +
               "', which is whole, over them.";
    return "The settings in '" + file +
           "' were not saved and are as they were. Check that you may write this file and that its disk has "
           "room, and try again.";
}

}  // namespace

void settingsError(std::int32_t code) {
    if (code < ERR_FILE_READ || code > ERR_FILE_NAME) return DefaultErrorHandler(code);
    const Reporting report;
    if (!report.entered()) return;
    if (!failure.told) {
        Sound();
        MsgBox("Error", ErrorMessage(code) + " (error " + STR(code) + ").\n" + failure.advice, "OK",
               BoxIcon::Error);
    }
    ContinueAfterError();
}

namespace {

std::string_view read(const std::string& file, bool& readable, Lost lost) {
    // The room is kept from call to call, so that a read allocates nothing; a huge one is given back. Nothing
    // is asked about the file ahead of the read: the calls to the system are most of what a read costs.
    static std::vector<char> room;
    if (room.size() > KeptRoom) room = std::vector<char>();
    std::size_t size = 0;
    const os::FileError error = file.empty() ? os::FileError::NotFound : readWhole(file, room, size);
    readable = error == os::FileError::None || IsMissing(error);
    if (readable)
        settle(toldReads, file, 0, {}, lost);
    else
        settle(toldReads, file, FileReadCode(error), readAdvice(file), lost);
    return {room.data(), error == os::FileError::None ? size : 0};
}

}  // namespace

std::string_view readProfile(const std::string& file, bool& readable) {
    return read(file, readable, Lost::Nothing);
}

bool writeProfile(const std::string& file, std::string_view text) {
    const os::SaveResult result = os::saveFile(file, text, os::Durability::Unsynced);
    settle(toldWrites, file, FileWriteCode(result.error),
           result.ok() ? std::string() : writeAdvice(file, result), Lost::Change);
    return result.ok();
}

std::string textOf(const std::string& file, bool& readable) {
    return std::string(read(file, readable, Lost::Change));
}

std::string textToChange(const std::string& file, bool& readable) {
    std::string text = textOf(file, readable);
    if (!text.empty() || !readable) return text;
    const auto origin = origins().find(file);
    return origin != origins().end() ? origin->second() : text;
}

}  // namespace detail

void PROFILESTRORIGIN(const std::string& file, ProfileOrigin origin) {
    FRAME(PROFILESTRORIGIN);
    if (origin != nullptr)
        detail::origins()[file] = origin;
    else
        detail::origins().erase(file);
}

namespace {

std::string_view readText(const std::string& file) {
    bool readable = false;
    return detail::readProfile(file, readable);
}

}  // namespace

std::string PROFILESTRGET(const std::string& file, std::string_view section, std::string_view key) {
    FRAME(PROFILESTRGET);
    STAMP();
    const std::string_view text = readText(file);
    return key.empty() ? ini::values(text, section) : std::string(ini::get(text, section, key));
}

int PROFILESTRGETINT(const std::string& file, std::string_view section, std::string_view key) {
    FRAME(PROFILESTRGETINT);
    bool ok = false;
    STAMP();
    const int number = CVTI(PROFILESTRGET(file, section, key), ok);
    return ok ? number : 0;
}

std::string PROFILESTRKEYS(const std::string& file, std::string_view section) {
    FRAME(PROFILESTRKEYS);
    STAMP();
    return ini::keys(readText(file), section);
}

std::string PROFILESTRSECTIONS(const std::string& file) {
    FRAME(PROFILESTRSECTIONS);
    STAMP();
    return ini::sections(readText(file));
}

void PROFILESTRPUT(const std::string& file, std::string_view section, std::string_view key,
                   std::string_view value) {
    FRAME(PROFILESTRPUT);
    if (file.empty() || section.empty() || !(key.empty() || ini::isKey(key))) return;
    bool readable = false;
    STAMP();
    std::string text = detail::textToChange(file, readable);
    if (!readable) return;
    const std::string before = text;
    if (key.empty())
        ini::putList(text, section, value);
    else
        ini::put(text, section, key, value);
    STAMP();
    if (text != before) detail::writeProfile(file, text);
}

void PROFILESTRDEL(const std::string& file, std::string_view section, std::string_view key) {
    FRAME(PROFILESTRDEL);
    if (file.empty() || section.empty()) return;
    bool readable = false;
    STAMP();
    std::string text = detail::textOf(file, readable);
    if (!readable || !ini::remove(text, section, key)) return;
    STAMP();
    detail::writeProfile(file, text);
}

std::string PROFILESTROSDIR() {
    FRAME(PROFILESTROSDIR);
    return FILEADDSEPARATOR(os::environment("WINDIR"));
}

}  // namespace tarn
