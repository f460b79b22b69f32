// SPDX-License-Identifier: Apache-2.0
#include "support/value_model.h"

#include <algorithm>
#include <cstring>

namespace tarn::model {

namespace {

constexpr ArrayBounds noDimension{NO_DIMENSION, NO_DIMENSION};

bool exists(const ArrayBounds& b) {
    return b.lower != NO_DIMENSION;
}

std::size_t elementCount(const ValueModel& m) {
    if (!exists(m.bounds[0])) return 0;
    std::size_t count = 1;
    for (const ArrayBounds& b : m.bounds)
        if (exists(b)) count *= static_cast<std::size_t>(b.upper - b.lower + 1);
    return count;
}

std::int32_t sizeOf(const ValueModel& m) {
    return KindSize[m.kind];
}

// The byte of a member on the integer line: i / 8, rounded up.
std::int32_t byteOf(std::int32_t member) {
    const std::int32_t above = member + 7;
    return above >= 0 ? above / 8 : -((-above + 7) / 8);
}

int maskOf(std::int32_t member) {
    return 128 >> (((member - 1) % 8 + 8) % 8);
}

std::int32_t setBytes(const ValueModel& m) {
    return byteOf(m.bounds[0].upper) - byteOf(m.bounds[0].lower) + 1;
}

std::string setBits(const ValueModel& m) {
    std::string bits(static_cast<std::size_t>(setBytes(m)), '\0');
    for (const std::int32_t i : m.members) {
        char& byte = bits[static_cast<std::size_t>(byteOf(i) - byteOf(m.bounds[0].lower))];
        byte = static_cast<char>(byte | maskOf(i));
    }
    return bits;
}

FieldKinds kindsOf(const ValueModel& m) {
    FieldKinds kinds{};
    for (std::size_t i = 0; i < m.parts.size(); ++i)
        kinds.nibbles[i / 2] =
            static_cast<std::uint8_t>(kinds.nibbles[i / 2] | m.parts[i].kind << (i % 2 == 0 ? 4 : 0));
    return kinds;
}

bool isFixedList(const ValueModel& m) {
    return m.kind == KindList && m.maxlength != UNBOUNDED;
}

// The slots of a fixed list behind its rows are there too.
std::vector<ValueModel> slotsOf(const ValueModel& m) {
    std::vector<ValueModel> slots = m.parts;
    if (isFixedList(m)) slots.resize(static_cast<std::size_t>(m.maxlength), m.element[0]);
    return slots;
}

bool hasPrototype(const ValueModel& m) {
    return (m.kind == KindArray || m.kind == KindList) && IsAdtKind(m.element[0].kind);
}

// The prototype of a fixed list is its first slot.
bool ownsPrototype(const ValueModel& m) {
    return hasPrototype(m) && !isFixedList(m);
}

Offset block(std::int32_t size) {
    Offset made = 0;
    if (size != 0) Allocate(made, size);
    return made;
}

std::int32_t bytesOf(const std::vector<ValueModel>& parts) {
    std::int32_t bytes = 0;
    for (const ValueModel& part : parts) bytes += sizeOf(part);
    return bytes;
}

template <class Descriptor>
void makeParts(Descriptor& d, const std::vector<ValueModel>& parts) {
    d.size = bytesOf(parts);
    d.data = block(d.size);
    char* at = At(d.data);
    for (const ValueModel& part : parts) {
        Make(part, at);
        at += sizeOf(part);
    }
}

Offset makePrototype(const ValueModel& m) {
    if (!ownsPrototype(m)) return 0;
    const Offset made = block(sizeOf(m.element[0]));
    Make(m.element[0], At(made));
    return made;
}

StringDescriptor makeString(const ValueModel& m) {
    const auto length = static_cast<std::int32_t>(m.text.size());
    StringDescriptor d{m.maxlength == UNBOUNDED ? length : m.maxlength, TagString, 0, m.maxlength, length, 0};
    d.data = block(d.size);
    if (length != 0) std::memcpy(At(d.data), m.text.data(), m.text.size());
    return d;
}

SetDescriptor makeSet(const ValueModel& m) {
    const std::string bits = setBits(m);
    SetDescriptor d{setBytes(m), TagString, 0, m.maxlength, m.bounds[0].lower, m.bounds[0].upper, {}, 0};
    for (std::size_t i = 0; i < 4; ++i) d.unused[i] = NO_DIMENSION;
    d.data = block(d.size);
    std::memcpy(At(d.data), bits.data(), bits.size());
    return d;
}

// ---- what stands in memory ----

std::string word(const char* what, std::int64_t is, std::int64_t expected) {
    if (is == expected) return {};
    return std::string(what) + " " + std::to_string(is) + " for " + std::to_string(expected) + "; ";
}

std::int64_t numberAt(const void* at, Kind kind) {
    if (kind == KindFixed) return ReadAt<std::int64_t>(at);
    return kind == KindInteger ? ReadAt<std::int32_t>(at) : ReadAt<std::uint8_t>(at);
}

// The words that all descriptors have. Only the rows of a list are looked into: what stands behind is spare.
template <class Descriptor>
std::string headDiffers(const Descriptor& d, std::int32_t tag, std::int32_t size) {
    return word("tag", d.tag, tag) + word("size", d.size, size) + word("has data", d.data != 0, size != 0);
}

std::string partsDiffer(const std::vector<ValueModel>& parts, Offset data) {
    std::string all;
    const char* at = At(data);
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const std::string one = Differs(parts[i], at);
        if (!one.empty()) all += std::to_string(i + 1) + ": (" + one + ") ";
        at += sizeOf(parts[i]);
    }
    return all;
}

std::string prototypeDiffers(const ValueModel& m, Offset prototype) {
    const std::string presence = word("has prototype", prototype != 0, hasPrototype(m));
    if (!presence.empty() || !ownsPrototype(m)) return presence;
    const std::string inside = Differs(m.element[0], At(prototype));
    return inside.empty() ? inside : "prototype (" + inside + ") ";
}

std::string stringDiffers(const ValueModel& m, const void* at) {
    const auto d = ReadAt<StringDescriptor>(at);
    const auto length = static_cast<std::int32_t>(m.text.size());
    std::string all = headDiffers(d, TagString, m.maxlength == UNBOUNDED ? length : m.maxlength) +
                      word("maxlength", d.maxlength, m.maxlength) + word("length", d.length, length) +
                      word("reserved", d.reserved, 0);
    if (all.empty() && length != 0 && std::string_view(At(d.data), m.text.size()) != m.text)
        all = "'" + std::string(At(d.data), m.text.size()) + "' for '" + m.text + "'";
    return all;
}

std::string recordDiffers(const ValueModel& m, const void* at) {
    const auto d = ReadAt<RecordDescriptor>(at);
    const FieldKinds kinds = kindsOf(m);
    std::string all = headDiffers(d, m.kind == KindRecord ? TagRecord : TagUnion, bytesOf(m.parts));
    if (std::memcmp(&kinds, &d.kinds, sizeof kinds) != 0) all += "field kinds; ";
    return all.empty() ? partsDiffer(m.parts, d.data) : all;
}

std::string setDiffers(const ValueModel& m, const void* at) {
    const auto d = ReadAt<SetDescriptor>(at);
    std::string all = headDiffers(d, TagString, setBytes(m)) + word("maxlength", d.maxlength, m.maxlength) +
                      word("lower", d.lower, m.bounds[0].lower) + word("upper", d.upper, m.bounds[0].upper);
    for (std::size_t i = 0; i < 4; ++i) all += word("unused", d.unused[i], NO_DIMENSION);
    const std::string bits = setBits(m);
    if (all.empty() && std::memcmp(At(d.data), bits.data(), bits.size()) != 0) all = "members; ";
    return all;
}

std::string arrayDiffers(const ValueModel& m, const void* at) {
    const auto d = ReadAt<ArrayDescriptor>(at);
    std::string all = headDiffers(d, m.element[0].kind, bytesOf(m.parts)) +
                      word("maxlength", d.maxlength, m.maxlength) + prototypeDiffers(m, d.prototype);
    for (std::size_t i = 0; i < m.bounds.size(); ++i)
        all += word("lower", d.bounds[i].lower, m.bounds[i].lower) +
               word("upper", d.bounds[i].upper, m.bounds[i].upper);
    return all.empty() ? partsDiffer(m.parts, d.data) : all;
}

std::string listDiffers(const ValueModel& m, const void* at) {
    const auto d = ReadAt<ListDescriptor>(at);
    const auto count = static_cast<std::int32_t>(m.parts.size());
    const std::int32_t slots = isFixedList(m) ? m.maxlength : count;
    const std::string all = headDiffers(d, m.element[0].kind, slots * sizeOf(m.element[0])) +
                            word("maxlength", d.maxlength, m.maxlength) + word("count", d.count, count) +
                            prototypeDiffers(m, d.prototype) +
                            word("prototype is the first slot", d.prototype != 0 && d.prototype == d.data,
                                 hasPrototype(m) && isFixedList(m));
    return all.empty() ? partsDiffer(m.parts, d.data) : all;
}

void add(HeapUse& use, const HeapUse& more) {
    use.bytes += more.bytes;
    use.blocks += more.blocks;
}

void addBlock(HeapUse& use, std::int32_t size) {
    if (size != 0) add(use, {size, 1});
}

}  // namespace

// ---- making models ----

ValueModel Number(Kind kind, std::int64_t number) {
    ValueModel m;
    m.kind = kind;
    m.number = number;
    return m;
}

ValueModel Real(double real) {
    ValueModel m;
    m.kind = KindReal;
    m.real = real;
    return m;
}

ValueModel Text(std::string_view text, std::int32_t maxlength) {
    ValueModel m;
    m.kind = KindString;
    m.text = text;
    m.maxlength = maxlength;
    return m;
}

ValueModel Record(std::vector<ValueModel> fields, Kind kind) {
    ValueModel m;
    m.kind = kind;
    m.parts = std::move(fields);
    return m;
}

ValueModel Array(std::vector<ArrayBounds> bounds, const ValueModel& element, std::vector<ValueModel> parts,
                 std::int32_t maxlength) {
    ValueModel m;
    m.kind = KindArray;
    m.maxlength = maxlength;
    m.bounds.fill(noDimension);
    std::copy(bounds.begin(), bounds.end(), m.bounds.begin());
    m.element = {Emptied(element)};
    m.parts = std::move(parts);
    m.parts.resize(elementCount(m), m.element[0]);
    return m;
}

ValueModel Set(std::int32_t lower, std::int32_t upper, std::set<std::int32_t> members,
               std::int32_t maxlength) {
    ValueModel m;
    m.kind = KindSet;
    m.maxlength = maxlength;
    m.bounds.fill(noDimension);
    m.bounds[0] = {lower, upper};
    m.members = std::move(members);
    return m;
}

ValueModel List(const ValueModel& element, std::vector<ValueModel> rows, std::int32_t maxlength) {
    ValueModel m;
    m.kind = KindList;
    m.maxlength = maxlength;
    m.element = {Emptied(element)};
    m.parts = std::move(rows);
    return m;
}

ValueModel Emptied(const ValueModel& model) {
    ValueModel m = model;
    m.number = 0;
    m.real = 0;
    m.text.clear();
    m.members.clear();
    if (m.maxlength == DYNAMIC_BOUNDS) m.bounds.fill(noDimension);
    if (m.maxlength == DYNAMIC_BOUNDS && m.kind == KindSet) m.bounds[0] = {1, 1};
    if (m.kind == KindList || (m.kind == KindArray && m.maxlength == DYNAMIC_BOUNDS)) m.parts.clear();
    for (ValueModel& part : m.parts) part = m.kind == KindArray ? m.element[0] : Emptied(part);
    return m;
}

std::vector<ValueModel*> Leaves(ValueModel& model) {
    if (!IsAdtKind(model.kind) || model.kind == KindString || model.kind == KindSet) return {&model};
    std::vector<ValueModel*> all;
    for (ValueModel& part : model.parts)
        for (ValueModel* leaf : Leaves(part)) all.push_back(leaf);
    return all;
}

void Change(ValueModel& leaf) {
    if (leaf.kind == KindReal) {
        leaf.real += 1;
    } else if (leaf.kind == KindString) {
        if (leaf.text.empty())
            leaf.text = "x";
        else
            leaf.text.back() = static_cast<char>(leaf.text.back() ^ 1);
    } else if (leaf.kind == KindSet) {
        const std::int32_t member = leaf.bounds[0].lower;
        if (leaf.members.erase(member) == 0) leaf.members.insert(member);
    } else {
        leaf.number ^= 1;
    }
}

// ---- between models and memory ----

void Make(const ValueModel& m, void* at) {
    switch (m.kind) {
    case KindBoolean:
    case KindEnum: WriteAt(at, static_cast<std::uint8_t>(m.number)); break;
    case KindInteger: WriteAt(at, static_cast<std::int32_t>(m.number)); break;
    case KindFixed: WriteAt(at, m.number); break;
    case KindReal: WriteAt(at, m.real); break;
    case KindString: WriteAt(at, makeString(m)); break;
    case KindSet: WriteAt(at, makeSet(m)); break;
    case KindArray: {
        ArrayDescriptor d{0, m.element[0].kind, 0, m.maxlength, {m.bounds[0], m.bounds[1], m.bounds[2]}, 0};
        makeParts(d, m.parts);
        d.prototype = makePrototype(m);
        WriteAt(at, d);
        break;
    }
    case KindList: {
        ListDescriptor d{0, m.element[0].kind, 0, m.maxlength, static_cast<std::int32_t>(m.parts.size()), 0};
        makeParts(d, slotsOf(m));
        d.prototype = hasPrototype(m) && isFixedList(m) ? d.data : makePrototype(m);
        WriteAt(at, d);
        break;
    }
    default: {
        RecordDescriptor d{0, m.kind == KindRecord ? TagRecord : TagUnion, 0, kindsOf(m)};
        makeParts(d, m.parts);
        WriteAt(at, d);
        break;
    }
    }
}

std::string Differs(const ValueModel& m, const void* at) {
    switch (m.kind) {
    case KindReal:
        return std::memcmp(at, &m.real, sizeof m.real) == 0 ? ""
                                                            : "real " + std::to_string(ReadAt<double>(at));
    case KindString: return stringDiffers(m, at);
    case KindSet: return setDiffers(m, at);
    case KindArray: return arrayDiffers(m, at);
    case KindList: return listDiffers(m, at);
    case KindRecord:
    case KindUnion: return recordDiffers(m, at);
    default: return word("number", numberAt(at, m.kind), m.number);
    }
}

HeapUse UseOf(const ValueModel& m) {
    HeapUse use;
    if (m.kind == KindString)
        addBlock(use, m.maxlength == UNBOUNDED ? static_cast<std::int32_t>(m.text.size()) : m.maxlength);
    if (m.kind == KindSet) addBlock(use, setBytes(m));
    const std::vector<ValueModel> slots = slotsOf(m);
    addBlock(use, bytesOf(slots));
    for (const ValueModel& slot : slots) add(use, UseOf(slot));
    if (ownsPrototype(m)) {
        addBlock(use, sizeOf(m.element[0]));
        add(use, UseOf(m.element[0]));
    }
    return use;
}

}  // namespace tarn::model
