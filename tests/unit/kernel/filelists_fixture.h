// SPDX-License-Identifier: Apache-2.0
//
// What the tests of lists in files share: a disk in memory that fails, fills up and dies when told, and lists
// on it.
#pragma once

#include "kernel/lists/lists.h"
#include "kernel/lists/rowfile.h"
#include "kernel/tables/filevalues.h"
#include "kernel/values/records.h"
#include "support/steerable.h"
#include "unit/kernel/values_fixture.h"

#include <string>
#include <string_view>
#include <vector>

namespace tarn {

class FileLists : public Values {
protected:
    using Numbers = std::vector<std::int32_t>;
    using Texts = std::vector<std::string>;

    FileLists() : steered_(files_) {}
    void SetUp() override {
        Values::SetUp();
        files_.putFolder("/d");
    }
    void TearDown() override {
        EXPECT_EQ(files_.openHandles(), 0);
        for (const std::string& file : files_.allFiles())
            EXPECT_EQ(file.find(".tarnwick-"), std::string::npos) << file;
        Values::TearDown();
    }

    // Not open.
    static ListValue listOf(const ValueModel& element, std::int32_t maxlength = UNBOUNDED) {
        const OddValue like(element);
        ListValue l;
        ListInit(l.get(), maxlength, like.at(), element.kind, true);
        return l;
    }
    static ListValue opened(const std::string& name, const ValueModel& element,
                            std::int32_t maxlength = UNBOUNDED) {
        ListValue l = listOf(element, maxlength);
        FileOpen(l.get(), KindList, name);
        return l;
    }
    static ListValue numbers(const std::string& name, const Numbers& values = {},
                             std::int32_t maxlength = UNBOUNDED) {
        ListValue l = opened(name, model::Number(KindInteger, 0), maxlength);
        for (const std::int32_t value : values) ListAppend(&value, KindInteger, l.get());
        return l;
    }
    static ListValue texts(const std::string& name, const Texts& values = {},
                           std::int32_t maxlength = UNBOUNDED, std::int32_t capacity = 5) {
        ListValue l = opened(name, model::Text("", capacity), maxlength);
        for (const std::string& value : values) append(l, value);
        return l;
    }
    static void append(ListValue& l, std::string_view text) {
        const String value(text);
        ListAppend(value.get(), KindString, l.get());
    }
    // The rows of an Xbase file: the mark of deletion and a name of three characters.
    static ValueModel xbaseRow(std::string_view name = "", char mark = '\0') {
        std::vector<ValueModel> characters;
        for (std::size_t i = 0; i < 3; ++i)
            characters.push_back(model::Number(KindEnum, i < name.size() ? name[i] : name.empty() ? 0 : ' '));
        return model::Record(
            {model::Number(KindEnum, mark), model::Array({{1, 3}}, model::Number(KindEnum, 0), characters)});
    }

    static Numbers numbersIn(const ListValue& l) {
        Numbers values;
        for (std::int32_t i = 1; i <= ListCount(l.get()); ++i) {
            std::int32_t number = 0;
            ListGet(l.get(), i, &number, KindInteger);
            values.push_back(number);
        }
        return values;
    }
    static Texts textsIn(const ListValue& l) {
        Texts values;
        for (std::int32_t i = 1; i <= ListCount(l.get()); ++i) {
            String text;
            ListGet(l.get(), i, text.get(), KindString);
            values.emplace_back(text.view());
        }
        return values;
    }
    static std::string check(const ListValue& l) { return AdtCheck(l.get(), KindList); }
    static std::string nameOf(const ListValue& l) { return FileNameOf(l.get(), KindList); }

    std::string bytesOf(const std::string& path) const { return files_.contents(path); }
    // Two digits for each byte; blanks do not count.
    static std::string fromHex(std::string_view digits) {
        std::string bytes;
        int half = -1;
        for (const char c : digits) {
            if (c == ' ') continue;
            const int digit = c <= '9' ? c - '0' : c - 'A' + 10;
            if (half >= 0) bytes += static_cast<char>(half * 16 + digit);
            half = half >= 0 ? -1 : digit;
        }
        return bytes;
    }

    os::SteeredFiles files_;
    os::Steered steered_;
};

}  // namespace tarn
