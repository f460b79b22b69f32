// SPDX-License-Identifier: Apache-2.0
//
// What the tests of lists share.
#pragma once

#include "kernel/lists/lists.h"
#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/values/adt.h"
#include "kernel/values/records.h"
#include "unit/kernel/checked_fixture.h"

#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

namespace tarn {

class Lists : public Checked {
protected:
    using Texts = std::vector<std::string>;
    using Numbers = std::vector<std::int32_t>;

    static String fixedString(std::int32_t capacity, std::string_view text = {}) {
        String s(capacity);
        s.assign(text);
        return s;
    }
    static RecordValue record(std::int32_t number, std::string_view text) {
        RecordValue r;
        RecordInit(r.get(), TagRecord, MakeFieldKinds({KindInteger, KindString}));
        RecordPut(r.get(), 1, &number, KindInteger);
        auto* field = static_cast<StringDescriptor*>(RecordFieldAddress(r.get(), 2));
        StringInit(field, UNBOUNDED);
        StringAssignView(field, text);
        return r;
    }

    static ListValue untyped() {
        ListValue l;
        ListInit(l.get(), UNBOUNDED, nullptr, KindNone, false);
        return l;
    }
    static ListValue numbers(const Numbers& values = {}, std::int32_t maxlength = UNBOUNDED) {
        ListValue l;
        ListInit(l.get(), maxlength, nullptr, KindInteger, false);
        for (const std::int32_t value : values) ListAppend(&value, KindInteger, l.get());
        return l;
    }
    // `capacity` is that of each text.
    static ListValue texts(const Texts& values = {}, std::int32_t maxlength = UNBOUNDED,
                           std::int32_t capacity = UNBOUNDED) {
        ListValue l;
        const String like(capacity);
        ListInit(l.get(), maxlength, like.get(), KindString, false);
        for (const std::string& value : values) append(l, value);
        return l;
    }
    static ListValue records(const Texts& values = {}, std::int32_t maxlength = UNBOUNDED) {
        ListValue l;
        const RecordValue like = record(0, "");
        ListInit(l.get(), maxlength, like.get(), KindRecord, false);
        std::int32_t number = 0;
        for (const std::string& value : values)
            ListAppend(record(++number, value).get(), KindRecord, l.get());
        return l;
    }
    // Not opened.
    static ListValue inFile(Kind kind = KindInteger, std::int32_t maxlength = UNBOUNDED) {
        ListValue l;
        const String like;
        ListInit(l.get(), maxlength, kind == KindString ? like.get() : nullptr, kind, true);
        return l;
    }
    static void append(ListValue& l, std::string_view text) {
        const String value(text);
        ListAppend(value.get(), KindString, l.get());
    }

    static Numbers numbersIn(const ListValue& l) {
        Numbers values;
        for (std::int32_t i = 1; i <= ListCount(l.get()); ++i)
            values.push_back(ReadAt<std::int32_t>(ListRef(l.get(), i)));
        return values;
    }
    static std::string textAt(const ListValue& l, std::int32_t position) {
        return std::string(StringView(static_cast<const StringDescriptor*>(ListRef(l.get(), position))));
    }
    static Texts textsIn(const ListValue& l) {
        Texts values;
        for (std::int32_t i = 1; i <= ListCount(l.get()); ++i) values.push_back(textAt(l, i));
        return values;
    }
    static const RecordDescriptor* recordAt(const ListValue& l, std::int32_t position) {
        return static_cast<const RecordDescriptor*>(ListRef(l.get(), position));
    }
    // The texts of the records.
    static Texts recordsIn(const ListValue& l) {
        Texts values;
        for (std::int32_t i = 1; i <= ListCount(l.get()); ++i)
            values.emplace_back(
                StringView(static_cast<const StringDescriptor*>(RecordFieldAddress(recordAt(l, i), 2))));
        return values;
    }
    static std::string check(const ListValue& l) { return AdtCheck(l.get(), KindList); }
    // For a comparison of a whole descriptor before and after.
    static std::string bytesOf(const ListValue& l) {
        return {reinterpret_cast<const char*>(l.get()), sizeof(ListDescriptor)};
    }
};

}  // namespace tarn
