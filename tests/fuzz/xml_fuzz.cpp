// SPDX-License-Identifier: Apache-2.0
// Any bytes: a structure or an error, a value of legal shape, and what was read without an error is saved and
// read again as the same value. A walk finds what a read finds, and tells elements one inside another. Readers of
// their own find what that of the operations finds, also while others are in the middle of their files.
//
// An input is a declaration of type information text, a form feed, and the file.
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/data/xml/xml_order.h"
#include "kernel/data/xml/xml_reader.h"
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/values/adt.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <unistd.h>

namespace {

void require(bool condition) {
    if (!condition) std::abort();
}

bool write(const std::string& path, const std::string& text) {
    std::FILE* const out = std::fopen(path.c_str(), "wb");
    if (out == nullptr) return false;
    std::fwrite(text.data(), 1, text.size(), out);
    return std::fclose(out) == 0;
}

void checkStructure(const std::string& file) {
    std::string text;
    const tarn::ErrorRecord error = tarn::XmlRead(file, 0, nullptr, tarn::KindNone, &text, tarn::MaxTypeInfo);
    require(text.size() < std::size_t{tarn::MaxTypeInfo});
    require((error.code == 0) == error.message.empty());
    std::size_t position = 0;
    tarn::TypeInfoToValue(text, position, nullptr);
}

class Depth : public tarn::XmlEvents {
public:
    void start(std::string_view, std::int32_t line) override {
        require(line >= 1);
        ++open;
    }
    void attribute(std::string_view name, std::string_view) override { require(open > 0 && !name.empty()); }
    void text(std::string_view part) override { require(open > 0 && !part.empty()); }
    void end() override { require(open-- > 0); }
    int open = 0;
};

void checkWalk(const std::string& file) {
    tarn::XmlReader reader, inTurns;
    Depth whole, parts;
    const tarn::ErrorRecord bare = tarn::XmlRead(file, 0, nullptr, tarn::KindNone, nullptr, 0);
    const tarn::ErrorRecord error = reader.walk(file, whole).error;
    require(error.code != 0 || whole.open == 0);
    // A text that is too long for a value is none for a walk.
    require(bare.code == error.code || bare.code == tarn::ERR_XML_OVERFLOW);
    require(inTurns.startWalk(file, parts, tarn::XmlCharacters::Utf8).code == 0);
    while (inTurns.walkOn(2)) require(parts.open == 1);
    require(inTurns.endWalk().error.code != 0 || parts.open == 0);
}

// A read and a load by a reader of their own, while another stands in the middle of the file.
void checkReaders(const std::string& file, const void* like, tarn::Kind kind) {
    tarn::XmlReader outer, reader;
    Depth parts;
    const bool walks = outer.startWalk(file, parts).code == 0 && outer.walkOn(2);
    std::string text, again;
    const tarn::ErrorRecord error = tarn::XmlRead(file, 0, nullptr, tarn::KindNone, &text, tarn::MaxTypeInfo);
    for (int i = 0; i < 2; ++i) {
        const tarn::XmlReadResult read =
            reader.read(file, nullptr, tarn::KindNone, &again, tarn::MaxTypeInfo);
        require(read.error.code == error.code && read.error.line == error.line && again == text);
    }
    char first[tarn::KindSize[tarn::KindArray]] = {}, second[tarn::KindSize[tarn::KindArray]] = {};
    if (tarn::IsAdtKind(kind)) {
        tarn::AdtInit(first, like, kind);
        tarn::AdtInit(second, like, kind);
        const tarn::XmlResult one = tarn::XmlLoad(file, first, kind), other = reader.load(file, second, kind);
        require(one.error.code == other.error.code && one.count == other.count);
        require(tarn::AdtCheck(second, kind).empty());
        if (tarn::AdtCompare("EQ", first, first, kind)) require(tarn::AdtCompare("EQ", first, second, kind));
        tarn::AdtFree(first, kind);
        tarn::AdtFree(second, kind);
    }
    if (!walks) return;
    while (outer.walkOn(2)) require(parts.open == 1);
    require(outer.endWalk().error.code != 0 || parts.open == 0);
}

// Rows by their structure: they have as many fields as are told, and no error that is not told.
void checkOrder(const std::string& file) {
    std::string text;
    if (tarn::XmlRead(file, 0, nullptr, tarn::KindNone, &text, tarn::MaxTypeInfo).code != 0 || text.empty())
        return;
    const tarn::XmlRows rows = tarn::XmlRowsOf(text);
    require(rows.depth >= 1 && rows.depth <= 3);
    const tarn::XmlOrder order = tarn::XmlCheckOrder(file, {tarn::TypeInfoName(text, 3), "b"}, rows);
    require(order.rows >= 0);
}

// Without the bytes that do not come back from a file, and without the number that equals no number.
bool comesBack(const std::string& file) {
    if (file.find_first_of("\r\x1A") != std::string::npos || file.size() >= 2000) return false;
    return file.find("&#") == std::string::npos && file.find_first_of("nN") == std::string::npos;
}

void checkValue(const std::string& file, const std::string& text, void* value, tarn::Kind kind) {
    const tarn::XmlResult loaded = tarn::XmlLoad(file, value, kind);
    require(tarn::AdtCheck(value, kind).empty());
    if (loaded.error.code != 0 || !comesBack(text)) return;
    char again[tarn::KindSize[tarn::KindArray]] = {};
    tarn::AdtInit(again, value, kind);
    for (const std::int32_t options : {0, tarn::XmlFieldAttributes}) {
        require(tarn::XmlSave(file, options, value, kind).error.code == 0);
        require(tarn::XmlLoad(file, again, kind).error.code == 0);
        require(tarn::AdtCompare("EQ", value, again, kind));
    }
    tarn::AdtFree(again, kind);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const std::string file = "/tmp/tarnwick-fuzz-xml-" + std::to_string(getpid());
    const std::string input(reinterpret_cast<const char*>(data), size);
    const std::size_t split = std::min(input.find('\f'), input.size());
    const std::string text = input.substr(std::min(split + 1, input.size()));
    if (!write(file, text)) return 0;
    checkStructure(file);
    checkWalk(file);
    checkOrder(file);
    char value[tarn::KindSize[tarn::KindArray]] = {};
    std::size_t position = 0;
    const std::int32_t kind = tarn::TypeInfoToValue(input.substr(0, split), position, value);
    if (tarn::IsValueKind(kind)) {
        checkReaders(file, value, static_cast<tarn::Kind>(kind));
        checkValue(file, text, value, static_cast<tarn::Kind>(kind));
        if (tarn::IsAdtKind(kind)) tarn::AdtFree(value, static_cast<tarn::Kind>(kind));
    }
    require(tarn::LiveBlocks() == 0);
    tarn::ClearError();
    std::remove(file.c_str());
    return 0;
}
