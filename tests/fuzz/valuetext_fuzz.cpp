// SPDX-License-Identifier: Apache-2.0
// Values from text: any text is a value, whose own text gives it back, or is refused and changes nothing; and nothing
// leaks. The first byte chooses the shape of the value.
#include "kernel/debug/valuetext.h"
#include "kernel/lists/lists.h"
#include "kernel/run/runtime.h"
#include "kernel/tables/tables.h"
#include "kernel/values/adt.h"
#include "kernel/values/arrays.h"
#include "kernel/values/records.h"
#include "kernel/values/sets.h"
#include "kernel/values/strings.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

using namespace tarn;

constexpr std::uint32_t Form = VALUE_BRACES | VALUE_BLANKS | VALUE_CHARACTERS;

void require(bool holds) {
    if (!holds) std::abort();
}

template <class Descriptor>
Descriptor* fieldOf(RecordDescriptor* record, std::int32_t number) {
    return static_cast<Descriptor*>(RecordFieldAddress(record, number));
}

// A record with a field of every kind but records and tables.
void makeRecord(RecordDescriptor* record) {
    RecordInit(record, TagRecord,
               MakeFieldKinds({KindBoolean, KindEnum, KindInteger, KindFixed, KindReal, KindString,
                               KindString, KindSet, KindSet, KindArray, KindArray, KindArray, KindList}));
    StringInit(fieldOf<StringDescriptor>(record, 6), UNBOUNDED);
    StringInit(fieldOf<StringDescriptor>(record, 7), 4);
    SetInit(fieldOf<SetDescriptor>(record, 8), UNBOUNDED, UNBOUNDED);
    SetInit(fieldOf<SetDescriptor>(record, 9), -3, 12);
    ArrayInit(fieldOf<ArrayDescriptor>(record, 10), KindEnum, 1, 5);
    ArrayInitDynamic(fieldOf<ArrayDescriptor>(record, 11), KindEnum, nullptr);
    ArrayInitDynamic(fieldOf<ArrayDescriptor>(record, 12), KindString, fieldOf<StringDescriptor>(record, 7));
    ListInit(fieldOf<ListDescriptor>(record, 13), 3, fieldOf<StringDescriptor>(record, 6), KindString, false);
}

Kind makeValue(void* value, std::uint8_t shape) {
    RecordValue record;
    makeRecord(record.get());
    ListValue list;
    ListInit(list.get(), UNBOUNDED, record.get(), KindRecord, false);
    constexpr Kind simple[] = {KindBoolean, KindEnum, KindInteger, KindFixed, KindReal};
    switch (shape % 10) {
    case 0: AdtInit(value, record.get(), KindRecord); return KindRecord;
    case 1: AdtInit(value, list.get(), KindList); return KindList;
    case 2: ListInit(static_cast<ListDescriptor*>(value), 3, list.get(), KindList, false); return KindList;
    case 3:
        ArrayInit(static_cast<ArrayDescriptor*>(value), KindRecord, -1, 1, record.get());
        return KindArray;
    case 4:
        TableInit(static_cast<TableDescriptor*>(value), UNBOUNDED, record.get(), {MakeKeyMap(3)}, "", false);
        return KindTable;
    default: return simple[shape % 10 - 5];
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const auto blocks = LiveBlocks();
    const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
    alignas(8) char value[sizeof(ArrayDescriptor)] = {};
    const Kind kind = makeValue(value, data[0]);
    const std::string before = ValueText(value, kind, Form);
    std::int32_t position = 1;
    const bool read = ValueFromText(text, position, value, kind);
    require(position >= 1 && static_cast<std::size_t>(position) <= text.size() + 1);
    require(ErrorCell() == 0);
    const std::string after = ValueText(value, kind, Form);
    if (IsAdtKind(kind)) require(AdtCheck(value, kind).empty());
    if (!read) require(after == before);
    ValueMisfit misfit;
    if (after.size() < MaxValueText) {
        require(ValueFromWholeText(after, value, kind, misfit));
        require(ValueText(value, kind, Form) == after);
    }
    AdtFree(value, kind);
    require(LiveBlocks() == blocks);
    return 0;
}
