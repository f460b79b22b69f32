// SPDX-License-Identifier: Apache-2.0
//
// Whole values of the language to and from files.
#include "library/longwork.h"
#include "library/savereport.h"
#include "library/system.h"

#include "kernel/data/datafile.h"
#include "kernel/errors.h"

MODULE("system", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

// Every whole-value load and save ends here: SAVEFILEREPORT is about the last of them.
TabResult remembered(const std::string& file, const TabResult& result) {
    detail::FailedSave& failed = detail::LastFailedSave();
    failed = {};
    if (result.code == 0) return result;
    failed.file = file;
    failed.why = result.message.empty() ? ErrorMessage(result.code) : result.message;
    failed.rescueCopy = result.rescueCopy;
    return result;
}

// An error that was pending already is that of an earlier statement.
TabResult reported(const TabResult& result) {
    SetError(result.code);
    return result;
}

// The options, or the code of what is wrong with their record.
TabResult readOptions(const RecordDescriptor* record, std::int32_t format, TabOptions& options) {
    const std::int32_t before = ErrorCell();
    tarn_error_cell = 0;
    options = TabOptionsOf(record, format);
    const TabResult result{ErrorCell()};
    tarn_error_cell = before;
    return result;
}

}  // namespace

TabResult LOADFILE(const std::string& file, std::int32_t format, const RecordDescriptor* options, void* value,
                   Kind kind) {
    FRAME(LOADFILE);
    STAMP();
    TabOptions read;
    TabResult result = readOptions(options, format, read);
    std::string message;
    if (result.code == 0) {
        const LongWork work("Reading '" + FILEGETFNAME(file) + "'");
        result = LoadValue(file, static_cast<DataFormat>(format), read, value, kind, message);
        if (result.stopped) result.code = ERR_FILE_READ;
    }
    detail::LastFailedSave() = {};
    return reported(result);
}

TabResult SAVEFILE(const std::string& file, std::int32_t format, const RecordDescriptor* options,
                   const void* value, Kind kind) {
    FRAME(SAVEFILE);
    STAMP();
    TabOptions read;
    TabResult result = readOptions(options, format, read);
    if (result.code == 0) {
        const LongWork work("Writing '" + FILEGETFNAME(file) + "'");
        result = SaveValue(file, static_cast<DataFormat>(format), read, 0, value, kind);
        if (result.stopped) {
            result.code = ERR_FILE_WRITE;
            result.message = "The writing was stopped.";
        }
    }
    return reported(remembered(file, result));
}

TabResult LOADFILE(const std::string& file, std::int32_t format, void* value, Kind kind) {
    FRAME(LOADFILE);
    STAMP();
    return LOADFILE(file, format, nullptr, value, kind);
}

TabResult SAVEFILE(const std::string& file, std::int32_t format, const void* value, Kind kind) {
    FRAME(SAVEFILE);
    STAMP();
    return SAVEFILE(file, format, nullptr, value, kind);
}

TabResult LOADFILE(const std::string& file, void* value, Kind kind) {
    FRAME(LOADFILE);
    STAMP();
    return LOADFILE(file, FormatBinary, nullptr, value, kind);
}

TabResult SAVEFILE(const std::string& file, const void* value, Kind kind) {
    FRAME(SAVEFILE);
    STAMP();
    return SAVEFILE(file, FormatBinary, nullptr, value, kind);
}

}  // namespace tarn
