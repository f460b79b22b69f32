// SPDX-License-Identifier: Apache-2.0
//
// What the pointer over a name in the debugger's source is told.
#include "unit/kernel/debug/debug_fixture.h"
#include "unit/kernel/debug/debuggedvalues.h"

#include "kernel/debug/fieldnames.h"
#include "platform/model/debugger/debugwindow.h"

#include <gtest/gtest.h>
#include <string>

namespace tarn {
namespace {

using platform::DebugMessage;

class DebugTips : public StoppedProgram {
protected:
    static std::string tip(platform::DebugWindow& window, const std::string& source, int line = 5) {
        event(window, DebugMessage::Hover, line, source);
        return window.tip;
    }
    static std::string symbol(const std::string& name, const std::string& sort, const std::string& type,
                              int line, int value) {
        return "\"" + name + "\",1,\"\",\"" + sort + "\"," + std::to_string(line) + "," +
               std::to_string(line) + ",1,\"Sums\",0,0,0,0,0,0,\"\",\"" + type + "\",0," +
               std::to_string(value) + ",\"\"\n";
    }
};

TEST_F(DebugTips, TellFieldsBehindElements) {
    const ValueModel part = debugged::Record({debugged::Text("wheel", 8), debugged::integer(7)});
    OddValue parts(debugged::List(part, {part}));
    OddValue box(debugged::Record({debugged::List(part, {part, part})}));
    std::int32_t i = 1, size = 99;
    hands().push_back([](platform::DebugWindow& window) {
        EXPECT_EQ(tip(window, "PRINT(parts[1].size"), "parts[1].size = 7");
        EXPECT_EQ(tip(window, "PRINT(parts[i].name"), "parts[i].name = \"wheel\"");
        EXPECT_EQ(tip(window, "x := box.all[i + 1].size"), "box.all[i + 1].size = 7");
        EXPECT_EQ(tip(window, "x := parts[i"), "i = 1");
        EXPECT_EQ(tip(window, "x := parts"), "parts = {{\"wheel\", 7}}");
        EXPECT_EQ(tip(window, "x := size"), "size = 99");
        EXPECT_EQ(tip(window, "x := parts[2].size"), "") << "it is not there";
        EXPECT_EQ(tip(window, "x := parts[1].weight"), "");
        EXPECT_EQ(tip(window, "x := find(1).size"), "") << "the field of a result is no variable";
        EXPECT_EQ(tip(window, "    .size"), "");
    });
    const Called f("Sums", "F", 1);
    RegisterVariable("parts", 'V', KindList, parts.at());
    NameFields(parts.at(), "[(name,size)]");
    RegisterVariable("box", 'V', KindRecord, box.at());
    NameFields(box.at(), "(all[(name,size)])");
    RegisterVariable("i", 'V', KindInteger, &i);
    RegisterVariable("size", 'V', KindInteger, &size);
    stampAt(5);
    EXPECT_EQ(stops().size(), 1U);
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_F(DebugTips, AreNotShownInCommentsAndTexts) {
    std::int32_t count = 7;
    hands().push_back([](platform::DebugWindow& window) {
        EXPECT_EQ(tip(window, "x := count"), "count = 7");
        for (const char* source :
             {"// the count", "x := 1 // count", "PRINT(\"the count", "PRINT(\"a\"\" count"})
            EXPECT_EQ(tip(window, source), "") << source;
        EXPECT_EQ(tip(window, "PRINT(\"a\" + count"), "count = 7");
        for (const char* source : {"true", "x := false", "not", "x := 12", ""})
            EXPECT_EQ(tip(window, source), "") << source;
    });
    const Called f("Sums", "F", 1);
    RegisterVariable("count", 'V', KindInteger, &count);
    stampAt(5);
}

TEST_F(DebugTips, TellWhatAConstantIs) {
    write("Sums.sym", bitmapRecord({3, 5, 9, 12}) + symbol("blue", "const", "enum", 2, 2) +
                          symbol("round", "const", "TShape", 2, 1) +
                          symbol("LIMIT", "const", "integer", 2, 12));
    settings("[Debugoptionsdlg]\r\nDebugHexOn=1\r\n");
    std::int32_t round = 5;
    hands().push_back([](platform::DebugWindow& window) {
        EXPECT_EQ(tip(window, "c := blue"), "blue : Enum = 2");
        EXPECT_EQ(tip(window, "c := BLUE"), "BLUE : Enum = 2");
        EXPECT_EQ(tip(window, "if i > limit"), "limit : Integer = 0x0000000C");
        EXPECT_EQ(tip(window, "s := round"), "round = 0x00000005") << "a variable hides it";
        EXPECT_EQ(tip(window, "s := other.blue"), "");
        EXPECT_EQ(tip(window, "// blue"), "");
    });
    const Called f("Sums", "F", 1);
    RegisterVariable("round", 'V', KindInteger, &round);
    stampAt(5);
}

TEST_F(DebugTips, TellNoVariableOfAnotherFunctionOrClass) {
    write("Sums.sym", bitmapRecord({3, 5, 9, 12}) + symbol("first", "function", "", 2, 0) +
                          symbol("second", "function", "", 8, 0));
    write("Other.cls", "one\r\ntwo\r\n");
    write("Other.sym", bitmapRecord({1}) + symbol("red", "const", "enum", 1, 3));
    RegisterClass(folder / "Other.cls", "Other");
    std::int32_t count = 7, total = 8;
    hands().push_back([](platform::DebugWindow& window) {
        EXPECT_EQ(tip(window, "count", 2), "count = 7");
        EXPECT_EQ(tip(window, "count", 7), "count = 7");
        EXPECT_EQ(tip(window, "count", 8), "") << "it is of another function";
        EXPECT_EQ(tip(window, "count", 1), "") << "it is of none";
        for (const int line : {1, 5, 8}) EXPECT_EQ(tip(window, "total", line), "total = 8") << "the class's";
        command(window, DEBUG_CLASSES);
        event(window, DebugMessage::DoubleClick, 2);
        EXPECT_EQ(listOf(window), "one\ntwo");
        EXPECT_EQ(tip(window, "count", 1), "");
        EXPECT_EQ(tip(window, "total", 1), "");
        EXPECT_EQ(tip(window, "red", 1), "red : Enum = 3");
    });
    const Called f("Sums", "FIRST", 2);
    RegisterVariable("count", 'V', KindInteger, &count);
    RegisterVariable("total", 'C', KindInteger, &total);
    stampAt(5);
    EXPECT_EQ(stops().size(), 1U);
}

TEST_F(DebugTips, FollowTheChosenCall) {
    std::int32_t outer = 1, inner = 2;
    const Called f("Sums", "OUTER", 2);
    RegisterVariable("n", 'V', KindInteger, &outer);
    hands().push_back([](platform::DebugWindow&) {});
    stampAt(3);
    hands().push_back([](platform::DebugWindow& window) {
        EXPECT_EQ(tip(window, "n"), "n = 2");
        command(window, DEBUG_STACK);
        EXPECT_EQ(tip(window, "n", 1), "") << "the list shows no source";
        event(window, DebugMessage::DoubleClick, 2);
        EXPECT_EQ(tip(window, "n"), "n = 1");
    });
    const Called g("Sums", "INNER", 8);
    RegisterVariable("n", 'V', KindInteger, &inner);
    platform::SetUserBreak(1);
    stampAt(9);
    EXPECT_EQ(stops().size(), 2U);
}

}  // namespace
}  // namespace tarn
