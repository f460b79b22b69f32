// SPDX-License-Identifier: Apache-2.0
//
// Strings (the layout is in values.h). A fixed string has its block of maxlength characters from the start;
// an unbounded one has a block of exactly its characters, and none while it is empty.
//
// All operations report through the error cell (756 for a null or wrong descriptor) and never trap; after 756
// nothing has changed. A text that does not fit a fixed string is cut and 615 set. When memory is short (802)
// or a block would be too large (804) an unbounded destination ends up empty. Any argument may be the
// destination itself.
//
// Texts given as bytes have one byte for each character, whatever CharacterWidth is.
//
// Cost: linear in the characters moved. An unbounded string holds exactly its characters and no spare room;
// appending to it by StringConcat(s, x, s) copies s only when the class of its block changes.
#pragma once

#include "kernel/values/fewbytes.h"
#include "kernel/values/values.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tarn {

extern std::int32_t CharacterWidth;  // bytes of each character: 1 "ASCII", 2 "WCHAR"

// ---- life ----

// `s` need not hold anything valid. A fixed capacity is allocated at once: 821 for 0, 804 and 802 as
// Allocate; the string then has no block and stays empty, whatever is
// assigned.
void StringInit(StringDescriptor* s, std::int32_t maxlength);
// Frees the block and zeroes the descriptor. A zeroed one stays as it is.
void StringFree(StringDescriptor* s);

// ---- assignment ----

void StringAssign(StringDescriptor* dest, const StringDescriptor* src);
void StringAssignText(StringDescriptor* dest, const char* text);            // NUL-ended
void StringAssignShort(StringDescriptor* dest, const unsigned char* text);  // its length in the first byte
void StringAssignView(StringDescriptor* dest, std::string_view bytes);
// `encoding` "ASCII" (a byte for each character) or "WCHAR" (two, of which the low one is kept; an odd count
// is rounded up). Reading stops at a NUL or after `bytes` bytes. A null pointer, a count below 1 or another
// encoding gives "".
void StringAssignBuffer(const void* src, std::string_view encoding, std::int32_t bytes,
                        StringDescriptor* dest);
void StringClear(StringDescriptor* s);  // length := 0; the block stays until the next change

// At most `limit` characters, cut to a byte each; `buffer` has room for `limit` + 1. Below 1: nothing is
// written.
void StringToText(char* buffer, std::int32_t limit, const StringDescriptor* src);
void StringToShort(unsigned char* buffer, std::int32_t limit, const StringDescriptor* src);  // at most 255

// ---- joining ----

// dest := a + b, for every pair of texts.
void StringConcat(const StringDescriptor* a, const StringDescriptor* b, StringDescriptor* dest);
void StringConcat(const StringDescriptor* a, std::string_view b, StringDescriptor* dest);
void StringConcat(std::string_view a, const StringDescriptor* b, StringDescriptor* dest);
void StringConcat(std::string_view a, std::string_view b, StringDescriptor* dest);

// The appends are for fixed strings, used as text buffers: what does not fit is left out without an error. On
// an unbounded string, or one without a block, they do nothing and report nothing.
void StringAppend(StringDescriptor* dest, const StringDescriptor* src);
void StringAppendShort(StringDescriptor* dest, const unsigned char* text);
void StringAppendText(StringDescriptor* dest, const char* text);
void StringAppendChar(StringDescriptor* dest, std::int32_t c);
void StringAppendBytes(StringDescriptor* dest, const void* buffer, std::int32_t n);

// Removes `count` characters from `position` on, fewer at the end. Fixed strings only, as the appends;
// nothing for a position outside the text or a count below 1.
void StringDelete(StringDescriptor* s, std::int32_t position, std::int32_t count);

// Puts a NUL behind the last character. It counts in `length` only in a fixed string with room; a full fixed
// string, or an unbounded one as large as a block can be, gets it in place of its last character.
void StringTerminate(StringDescriptor* s);

// ---- looking ----

// -1, 0 or 1 by unsigned characters; `ignoreCase` folds A to Z only.
void StringCompare(const StringDescriptor* a, const StringDescriptor* b, bool ignoreCase,
                   std::int32_t& result);
// `op`: EQ, NE, GT, LT, GE or LE in any case, read from its first two characters. 1 if it holds; 0 for any
// other.
inline std::int32_t StringCompareOp(std::string_view op, const StringDescriptor* a,
                                    const StringDescriptor* b);
std::int32_t StringCompareOp(std::string_view op, const StringDescriptor* a, std::string_view b);
std::int32_t StringCompareOp(std::string_view op, std::string_view a, const StringDescriptor* b);
std::int32_t StringCompareOp(std::string_view op, std::string_view a, std::string_view b);
// The text of a database null: NUL, "NULL", NUL.
bool StringIsNull(const StringDescriptor* s);

std::int32_t StringGetChar(const StringDescriptor* s, std::int32_t position);  // 0 outside
void StringPutChar(StringDescriptor* s, std::int32_t position, std::int32_t c);
std::int32_t StringLength(const StringDescriptor* s);     // 0, without an error, for a null pointer
std::int32_t StringMaxLength(const StringDescriptor* s);  // likewise
// The stored bytes (CharacterWidth for each character); valid until the string changes.
std::string_view StringView(const StringDescriptor* s);

// ---- the short way of comparing ----

namespace strings {

// StringCompareOp of any two strings.
std::int32_t CompareOp(std::string_view op, const StringDescriptor* a, const StringDescriptor* b);

inline bool IsEqualSign(std::string_view op) {
    return op.size() == 2 && (op[0] == 'E' || op[0] == 'e') && (op[1] == 'Q' || op[1] == 'q');
}

// An unbounded string, where a character is a byte.
inline bool IsPlainText(const StringDescriptor* s) {
    return s != nullptr && s->tag == TagString && s->maxlength == UNBOUNDED && s->size >= 0 &&
           static_cast<std::uint32_t>(s->length) <= static_cast<std::uint32_t>(s->size);
}

}  // namespace strings

// Whether two texts are equal is asked most often, and most of those are unbounded: that goes without a call.
inline std::int32_t StringCompareOp(std::string_view op, const StringDescriptor* a,
                                    const StringDescriptor* b) {
    if (!strings::IsEqualSign(op) || CharacterWidth != 1 || !strings::IsPlainText(a) ||
        !strings::IsPlainText(b))
        return strings::CompareOp(op, a, b);
    if (a->length != b->length) return 0;
    return SameBytes(tarn_heap_base + a->data, tarn_heap_base + b->data, static_cast<std::size_t>(a->length))
               ? 1
               : 0;
}

// ---- the owning type of the modules ----

// A string that is freed when it leaves its scope.
class String {
public:
    explicit String(std::int32_t maxlength = UNBOUNDED) { StringInit(&descriptor_, maxlength); }
    explicit String(std::string_view bytes) : String() { StringAssignView(&descriptor_, bytes); }
    ~String() { StringFree(&descriptor_); }
    // The string moved from is an empty unbounded one.
    String(String&& other) noexcept : descriptor_(other.descriptor_) {
        StringInit(&other.descriptor_, UNBOUNDED);
    }
    String& operator=(String&& other) noexcept {
        if (this == &other) return *this;
        StringFree(&descriptor_);
        descriptor_ = other.descriptor_;
        StringInit(&other.descriptor_, UNBOUNDED);
        return *this;
    }
    String(const String&) = delete;
    String& operator=(const String&) = delete;

    void assign(std::string_view bytes) { StringAssignView(&descriptor_, bytes); }
    [[nodiscard]] StringDescriptor* get() { return &descriptor_; }
    [[nodiscard]] const StringDescriptor* get() const { return &descriptor_; }
    [[nodiscard]] std::string_view view() const { return StringView(&descriptor_); }
    [[nodiscard]] std::int32_t length() const { return descriptor_.length; }

private:
    StringDescriptor descriptor_;
};

}  // namespace tarn
