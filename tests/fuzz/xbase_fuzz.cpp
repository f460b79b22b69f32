// SPDX-License-Identifier: Apache-2.0
// Xbase files: any bytes are a message or a header, every header that is read has a declaration or a message,
// a record of that declaration fits the file and its rows come back byte for byte, and values of other shapes
// are whole after they were loaded.
#include "kernel/data/datafile.h"
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/data/xbase/xbase.h"
#include "kernel/run/runtime.h"
#include "kernel/values/adt.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

namespace {

using namespace tarn;

const std::string file = "/tmp/tarnwick-fuzz-xbase-" + std::to_string(getpid()), copy = file + "-copy",
                  again = file + "-again";

void require(bool holds) {
    if (!holds) std::abort();
}

bool write(const std::string& bytes) {
    std::FILE* const out = std::fopen(file.c_str(), "wb");
    if (out == nullptr) return false;
    std::fwrite(bytes.data(), 1, bytes.size(), out);
    return std::fclose(out) == 0;
}

std::string read(const std::string& name) {
    std::string bytes;
    std::FILE* const in = std::fopen(name.c_str(), "rb");
    if (in == nullptr) return bytes;
    for (int c = std::fgetc(in); c != EOF; c = std::fgetc(in)) bytes += static_cast<char>(c);
    std::fclose(in);
    return bytes;
}

// A value that a declaration says, freed at the end.
class Value {
public:
    explicit Value(const std::string& declaration) {
        std::size_t position = 0;
        kind_ = static_cast<Kind>(TypeInfoToValue(declaration, position, bytes_));
        require(IsValueKind(kind_));
    }
    ~Value() {
        require(AdtCheck(bytes_, kind_).empty());
        AdtFree(bytes_, kind_);
    }
    Value(const Value&) = delete;
    Value& operator=(const Value&) = delete;
    void* get() { return bytes_; }
    [[nodiscard]] Kind kind() const { return kind_; }

private:
    Kind kind_ = KindNone;
    alignas(8) char bytes_[sizeof(ArrayDescriptor)] = {};
};

void checkHeader(const XbaseHeader& header) {
    std::int32_t size = 1;
    for (std::int32_t i = 0; i < header.fieldCount; ++i) size += header.length[i];
    require(header.fieldCount >= 0 && header.fieldCount <= MaxXbaseFields);
    require(header.recordSize == size && header.headerSize >= 33);
}

void checkRows(const std::string& bytes, const XbaseHeader& header, Value& record) {
    const auto first = static_cast<std::size_t>(header.headerSize);
    const auto size = static_cast<std::size_t>(header.recordSize);
    for (std::size_t at = first, rows = 0; at < bytes.size() && rows < 50; at += size, ++rows) {
        const std::string row = bytes.substr(at, size);
        const XbaseFault fault = XbaseReadRow(row, header, record.get(), KindRecord);
        if (row.size() < size) continue;
        require(fault.errorCode == 0);
        std::string written;
        require(XbaseWriteRow(record.get(), KindRecord, header, written).errorCode == 0);
        require(written.size() == size && (written[0] == row[0] || (row[0] == 0 && written[0] == ' ')));
        require(written.substr(1) == row.substr(1));
    }
}

// What is written is read as it was, and so written the same once more.
void checkWhole(const std::string& declaration) {
    std::string list = declaration, message;
    TypeInfoChangeIndent(1, list, MaxTypeInfo);
    Value rows("x : list\n" + list + "end list\n");
    const std::int32_t code = XbaseLoad(file, rows.get(), KindList, message).code;
    require(code == 0 || code == 655 || code == 804);
    if (code != 0) return;
    require(XbaseSave(copy, rows.get(), KindList, declaration).code == 0);
    require(XbaseLoad(copy, rows.get(), KindList, message).code == 0);
    require(XbaseSave(again, rows.get(), KindList, declaration).code == 0);
    require(read(copy).substr(4) == read(again).substr(4));  // but for the date
    std::remove(copy.c_str());
    std::remove(again.c_str());
}

void loadOther(const std::string& declaration) {
    Value value(declaration);
    std::string message;
    const DataResult result = XbaseLoad(file, value.get(), value.kind(), message);
    require(message.empty() == (result.code != 661));
    require(ErrorCell() == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    if (size > 100000 || !write(bytes)) return 0;
    XbaseHeader header;
    std::string message = XbaseDecodeHeader(bytes, header);
    if (message.empty()) checkHeader(header);
    require(XbaseReadHeader(file, header) == message);
    const std::string declaration = XbaseTypeInfo(file, message);
    require(declaration.empty() == (!message.empty() || header.fieldCount == 0));
    if (!declaration.empty()) {
        Value record(declaration);
        require(record.kind() == KindRecord);
        // A record has no room for the mark and as many fields as a file can have.
        const bool full = header.fieldCount == MaxXbaseFields;
        // Logical fields are declared with one character.
        std::int32_t misfit = full ? MaxXbaseFields : 0;
        for (std::int32_t i = MaxXbaseFields - 1 - (full ? 1 : 0); i >= 0; --i) {
            if (i < header.fieldCount && header.type[i] == 'L' && header.length[i] > 1) misfit = i + 1;
        }
        require(XbaseCheckValue(header, KindRecord, record.get()) == misfit);
        require(TypeInfoIsXbaseRecord(static_cast<RecordDescriptor*>(record.get())));
        if (misfit == 0) checkRows(bytes, header, record);
        if (misfit == 0 && size % 16 == 0) checkWhole(declaration);
    }
    loadOther("x : list\n\tr : record\n\t\ta : integer\n\t\tb : string[8]\n\t\tc : real\n\t\td : fixed\n"
              "\t\te : boolean\n\t\tf : enum\n\t\tg : Tchars[1:3]\n\tend record\nend list\n");
    loadOther("x : list\n\tr : record\n\t\tx : enum\n\t\ta : string\n\t\tb : real\n\tend record\nend list\n");
    loadOther("x : string[1000]\n");
    loadOther("x : set[0:300]\n");
    const DataFileInfo info = GetDataFileInfo(file, nullptr);
    require(info.typeText.empty() == !info.message.empty());
    require(LiveBlocks() == 0);
    std::remove(file.c_str());
    return 0;
}
