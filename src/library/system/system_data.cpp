// SPDX-License-Identifier: Apache-2.0
//
// Whole values of the language to and from files.
#include "library/system/files.h"

#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "library/system/longwork.h"
#include "library/system/savereport_internal.h"

MODULE("system", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

// Every whole-value load and save ends here: SAVEFILEREPORT is about the last of them.
DataResult remembered(const std::string& file, const DataResult& result) {
    detail::FailedSave& failed = detail::LastFailedSave();
    failed = {};
    if (result.code == 0) return result;
    failed.file = file;
    failed.why = result.message.empty() ? ErrorMessage(result.code) : result.message;
    failed.rescueCopy = result.rescueCopy;
    return result;
}

// An error that was pending already is that of an earlier statement.
DataResult reported(const DataResult& result) {
    SetError(result.code);
    return result;
}

}  // namespace

DataResult LOADFILE(const std::string& file, std::int32_t format, const RecordDescriptor* options,
                    void* value, Kind kind) {
    FRAME(LOADFILE);
    STAMP();
    DataOptions read;
    DataResult result{ReadDataOptions(options, format, read)};
    std::string message;
    if (result.code == 0) {
        const LongWork work("Reading '" + FILEGETFNAME(file) + "'");
        result = LoadValue(file, static_cast<DataFormat>(format), read, value, kind, message);
        if (result.stopped) result.code = ERR_FILE_READ;
    }
    detail::LastFailedSave() = {};
    return reported(result);
}

DataResult SAVEFILE(const std::string& file, std::int32_t format, const RecordDescriptor* options,
                    const void* value, Kind kind) {
    FRAME(SAVEFILE);
    STAMP();
    DataOptions read;
    DataResult result{ReadDataOptions(options, format, read)};
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

DataResult LOADFILE(const std::string& file, std::int32_t format, void* value, Kind kind) {
    FRAME(LOADFILE);
    STAMP();
    return LOADFILE(file, format, nullptr, value, kind);
}

DataResult SAVEFILE(const std::string& file, std::int32_t format, const void* value, Kind kind) {
    FRAME(SAVEFILE);
    STAMP();
    return SAVEFILE(file, format, nullptr, value, kind);
}

DataResult LOADFILE(const std::string& file, void* value, Kind kind) {
    FRAME(LOADFILE);
    STAMP();
    return LOADFILE(file, FormatBinary, nullptr, value, kind);
}

DataResult SAVEFILE(const std::string& file, const void* value, Kind kind) {
    FRAME(SAVEFILE);
    STAMP();
    return SAVEFILE(file, FormatBinary, nullptr, value, kind);
}

}  // namespace tarn
