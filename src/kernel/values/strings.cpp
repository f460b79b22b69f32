// SPDX-License-Identifier: Apache-2.0
//
// What is assigned may lie inside the destination, so bytes are moved, not copied, and a destination is freed
// only after its new block is complete.
#include "kernel/values/fewbytes.h"
#include "kernel/values/string_access_internal.h"

#include <climits>

namespace tarn {

using namespace strings;

std::int32_t CharacterWidth = 1;

namespace {

bool isUnbounded(const StringDescriptor& s) {
    return s.maxlength == UNBOUNDED;
}

// Writes the first `count` characters of `text` behind the first `index` characters of a block.
void put(char* block, std::int32_t index, const Text& text, std::int32_t count) {
    if (count <= 0) return;
    char* into = block + bytesOf(index);
    if (text.width == CharacterWidth) {
        MoveBytes(into, text.bytes, bytesOf(count));
        return;
    }
    for (std::int32_t i = 0; i < count; ++i) storeCharacter(into + bytesOf(i), characterAt(text, i));
}

// The size to ask the heap for; one that it refuses when the characters cannot fit a block.
std::int32_t blockSize(std::int64_t characters) {
    return static_cast<std::int32_t>(
        std::clamp<std::int64_t>(characters * CharacterWidth, -1, std::int64_t{MaxBlock} + 1));
}

void drop(StringDescriptor& s) {
    FreeData(s);
    s.length = 0;
}

void takeBlock(StringDescriptor& s, Offset block, std::int32_t size, std::int32_t length) {
    FreeData(s);
    s.data = block;
    s.size = size;
    s.length = length;
}

std::int32_t capacityOf(const StringDescriptor& s) {
    return s.data == 0 ? 0 : s.maxlength;
}

bool liesIn(const Text& text, const StringDescriptor& s) {
    return s.data != 0 && text.bytes >= At(s.data) && text.bytes < At(s.data) + s.size;
}

// ---- assignment ----

void assignFixed(StringDescriptor& dest, const Text& text) {
    const std::int32_t count = std::min(text.count, capacityOf(dest));
    put(At(dest.data), 0, text, count);
    dest.length = count;
    if (count < text.count) SetError(ERR_FIXED_STRING);
}

void assign(StringDescriptor& dest, const Text& text) {
    if (!isUnbounded(dest)) {
        assignFixed(dest, text);
        return;
    }
    if (text.count == 0) {
        drop(dest);
        return;
    }
    const std::int32_t size = blockSize(text.count);
    if (!liesIn(text, dest) && ResizeInPlace(dest.data, dest.size, size)) {
        put(At(dest.data), 0, text, text.count);
        dest.size = size;
        dest.length = text.count;
        return;
    }
    Offset block = 0;
    Allocate(block, size);
    if (block == 0) {
        drop(dest);
        return;
    }
    put(At(block), 0, text, text.count);
    takeBlock(dest, block, size, text.count);
}

// ---- joining ----

// Both texts go straight to their places, in the order that does not overwrite what is still to be read.
void concatFixed(StringDescriptor& dest, Text a, const Text& b) {
    char* block = At(dest.data);
    const std::int32_t countA = std::min(a.count, capacityOf(dest));
    const std::int32_t countB = std::min(b.count, capacityOf(dest) - countA);
    const bool cut = countA < a.count || countB < b.count;
    std::string copyOfA;
    if (liesIn(b, dest) && a.bytes != block) {
        if (liesIn(a, dest)) {
            copyOfA.assign(a.bytes, bytesOf(countA));
            a.bytes = copyOfA.data();
        }
        put(block, countA, b, countB);
        put(block, 0, a, countA);
    } else {
        put(block, 0, a, countA);
        put(block, countA, b, countB);
    }
    dest.length = countA + countB;
    if (cut) SetError(ERR_FIXED_STRING);
}

// dest := dest + b, in the block of dest as long as its class allows.
void extend(StringDescriptor& dest, Text b, std::int32_t size) {
    const std::ptrdiff_t inside = liesIn(b, dest) ? b.bytes - At(dest.data) : -1;
    if (!ResizeData(dest, size)) {
        drop(dest);
        return;
    }
    if (inside >= 0) b.bytes = At(dest.data) + inside;
    put(At(dest.data), dest.length, b, b.count);
    dest.length += b.count;
}

void concat(const Text& a, const Text& b, StringDescriptor& dest) {
    if (!isUnbounded(dest)) {
        concatFixed(dest, a, b);
        return;
    }
    const std::int64_t count = std::int64_t{a.count} + b.count;
    const std::int32_t size = blockSize(count);
    if (count == 0) {
        drop(dest);
        return;
    }
    if (dest.data != 0 && a.bytes == At(dest.data) && a.count == dest.length) {
        extend(dest, b, size);
        return;
    }
    const bool apart = !liesIn(a, dest) && !liesIn(b, dest);
    const bool inPlace = apart && ResizeInPlace(dest.data, dest.size, size);
    Offset block = inPlace ? dest.data : 0;
    if (!inPlace) Allocate(block, size);
    if (block == 0) {
        drop(dest);
        return;
    }
    put(At(block), 0, a, a.count);
    put(At(block), a.count, b, b.count);
    if (!inPlace) FreeData(dest);
    dest.data = block;
    dest.size = size;
    dest.length = static_cast<std::int32_t>(count);
}

void append(StringDescriptor* dest, const Text& text) {
    if (isUnbounded(*dest) || dest->data == 0) return;
    const std::int32_t count = std::min(text.count, dest->maxlength - dest->length);
    put(At(dest->data), dest->length, text, count);
    dest->length += count;
}

bool acceptText(const StringDescriptor* dest, const void* text) {
    if (text != nullptr) return accept(dest);
    SetError(ERR_STRING_TYPE);
    return false;
}

std::string_view shortText(const unsigned char* text) {
    return {reinterpret_cast<const char*>(text) + 1, static_cast<std::size_t>(text[0])};
}

// The narrow characters of a raw buffer up to a NUL.
std::string readBuffer(const char* src, std::int32_t characters, std::size_t step) {
    std::string text;
    for (std::int32_t i = 0; i < characters; ++i) {
        const char c = src[static_cast<std::size_t>(i) * step];
        if (c == 0) break;
        text += c;
    }
    return text;
}

}  // namespace

// ---- life ----

void StringInit(StringDescriptor* s, std::int32_t maxlength) {
    if (s == nullptr) {
        SetError(ERR_STRING_TYPE);
        return;
    }
    *s = {0, TagString, 0, maxlength, 0, 0};
    if (maxlength == UNBOUNDED) return;
    AllocateData(*s, blockSize(maxlength));
}

void StringFree(StringDescriptor* s) {
    // One that could not get its block may have any capacity; with a block, what is no string is a set.
    const bool known = s != nullptr && (s->tag == TagString || (s->tag == 0 && s->size == 0));
    if (!known || (s->size != 0 && s->maxlength != UNBOUNDED && s->maxlength < 1)) {
        SetError(ERR_STRING_TYPE);
        return;
    }
    FreeData(*s);
    *s = {};
}

// ---- assignment ----

void StringAssign(StringDescriptor* dest, const StringDescriptor* src) {
    if (accept(dest, src)) assign(*dest, textOf(src));
}

void StringAssignText(StringDescriptor* dest, const char* text) {
    if (acceptText(dest, text)) assign(*dest, textOf(text));
}

void StringAssignShort(StringDescriptor* dest, const unsigned char* text) {
    if (acceptText(dest, text)) assign(*dest, textOf(shortText(text)));
}

void StringAssignView(StringDescriptor* dest, std::string_view bytes) {
    if (accept(dest)) assign(*dest, textOf(bytes));
}

void StringAssignBuffer(const void* src, std::string_view encoding, std::int32_t bytes,
                        StringDescriptor* dest) {
    if (!accept(dest)) return;
    std::string text;
    if (src != nullptr && bytes > 0) {
        const auto* from = static_cast<const char*>(src);
        if (StringCompareOp("EQ", encoding, "ASCII") != 0)
            text = readBuffer(from, bytes, 1);
        else if (StringCompareOp("EQ", encoding, "WCHAR") != 0)
            text = readBuffer(from, bytes / 2 + bytes % 2, 2);
    }
    assign(*dest, textOf(text));
}

void StringClear(StringDescriptor* s) {
    if (accept(s)) s->length = 0;
}

void StringToText(char* buffer, std::int32_t limit, const StringDescriptor* src) {
    if (!acceptText(src, buffer) || limit < 1) return;
    const Text text = textOf(src);
    const std::int32_t count = std::min(limit, text.count);
    for (std::int32_t i = 0; i < count; ++i) buffer[i] = static_cast<char>(characterAt(text, i));
    buffer[count] = 0;
}

void StringToShort(unsigned char* buffer, std::int32_t limit, const StringDescriptor* src) {
    if (!acceptText(src, buffer) || limit < 1) return;
    const Text text = textOf(src);
    const std::int32_t count = std::min({limit, text.count, 255});
    for (std::int32_t i = 0; i < count; ++i) buffer[i + 1] = static_cast<unsigned char>(characterAt(text, i));
    buffer[0] = static_cast<unsigned char>(count);
}

// ---- joining ----

void StringConcat(const StringDescriptor* a, const StringDescriptor* b, StringDescriptor* dest) {
    if (accept(a, b, dest)) concat(textOf(a), textOf(b), *dest);
}

void StringConcat(const StringDescriptor* a, std::string_view b, StringDescriptor* dest) {
    if (accept(a, dest)) concat(textOf(a), textOf(b), *dest);
}

void StringConcat(std::string_view a, const StringDescriptor* b, StringDescriptor* dest) {
    if (accept(b, dest)) concat(textOf(a), textOf(b), *dest);
}

void StringConcat(std::string_view a, std::string_view b, StringDescriptor* dest) {
    if (accept(dest)) concat(textOf(a), textOf(b), *dest);
}

void StringAppend(StringDescriptor* dest, const StringDescriptor* src) {
    if (accept(dest, src)) append(dest, textOf(src));
}

void StringAppendShort(StringDescriptor* dest, const unsigned char* text) {
    if (acceptText(dest, text)) append(dest, textOf(shortText(text)));
}

void StringAppendText(StringDescriptor* dest, const char* text) {
    if (acceptText(dest, text)) append(dest, textOf(text));
}

void StringAppendChar(StringDescriptor* dest, std::int32_t c) {
    if (!accept(dest) || isUnbounded(*dest) || dest->data == 0 || dest->length >= dest->maxlength) return;
    storeCharacter(At(dest->data) + bytesOf(dest->length), c);
    ++dest->length;
}

void StringAppendBytes(StringDescriptor* dest, const void* buffer, std::int32_t n) {
    if (acceptText(dest, buffer) && n > 0) append(dest, {static_cast<const char*>(buffer), n, 1});
}

void StringDelete(StringDescriptor* s, std::int32_t position, std::int32_t count) {
    if (!accept(s) || isUnbounded(*s) || s->data == 0) return;
    if (position < 1 || position > s->length || count < 1) return;
    const std::int32_t first = position - 1, gone = std::min(count, s->length - first);
    char* hole = At(s->data) + bytesOf(first);
    std::memmove(hole, hole + bytesOf(gone), bytesOf(s->length - first - gone));
    s->length -= gone;
}

void StringTerminate(StringDescriptor* s) {
    if (!accept(s)) return;
    if (!isUnbounded(*s)) {
        if (s->data == 0) return;
        if (s->length < s->maxlength)
            StringAppendChar(s, 0);
        else
            storeCharacter(At(s->data) + bytesOf(s->length - 1), 0);
        return;
    }
    const std::int32_t size = blockSize(std::int64_t{s->length} + 1);
    if (size > MaxBlock) {
        storeCharacter(At(s->data) + bytesOf(s->length - 1), 0);
        return;
    }
    if (!ResizeData(*s, size)) {
        drop(*s);
        return;
    }
    storeCharacter(At(s->data) + bytesOf(s->length), 0);
}

}  // namespace tarn
