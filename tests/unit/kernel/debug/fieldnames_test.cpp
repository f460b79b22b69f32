// SPDX-License-Identifier: Apache-2.0
#include "kernel/debug/fieldnames.h"

#include "kernel/debug/results.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

namespace tarn {
namespace {

TEST(FieldNames, AreFoundWithoutRegardToCase) {
    struct Case {
        const char *names, *field;
        int number;
        const char* inner;
    };
    for (const Case& c : {Case{"(who,size)", "who", 1, ""},
                          {"(who,size)", "SIZE", 2, ""},
                          {"(who,size)", "siz", 0, ""},
                          {"(who,size)", "", 0, ""},
                          {"(a(x,y),b[(z)],c)", "a", 1, "(x,y)"},
                          {"(a(x,y),b[(z)],c)", "b", 2, "[(z)]"},
                          {"(a(x,y),b[(z)],c)", "c", 3, ""},
                          {"(a(x,y),b[(z)],c)", "x", 0, ""},
                          {"", "a", 0, ""},
                          {"[(a)]", "a", 0, ""},
                          {"(a", "a", 1, ""},
                          {"(a#2,b[#7],c)", "a", 1, "#2"},
                          {"(a#2,b[#7],c)", "b", 2, "[#7]"},
                          {"(a#2,b[#7],c)", "c", 3, ""},
                          {"(a#", "a", 1, "#"},
                          {"#2", "a", 0, ""},
                          {"(a(b", "b", 0, ""}}) {
        const FieldPlace place = FindField(c.names, c.field);
        EXPECT_EQ(place.number, c.number) << c.names << " " << c.field;
        EXPECT_EQ(place.names, c.inner) << c.names << " " << c.field;
    }
}

TEST(FieldNames, ThoseInAFieldAreToldByItsNumber) {
    EXPECT_EQ(FieldNamesAt("(a(x,y),b[(z)],c#3)", 1), "(x,y)");
    EXPECT_EQ(FieldNamesAt("(a(x,y),b[(z)],c#3)", 2), "[(z)]");
    EXPECT_EQ(FieldNamesAt("(a(x,y),b[(z)],c#3)", 3), "#3");
    EXPECT_EQ(FieldNamesAt("(a(x,y),b[(z)],c#3)", 4), "");
    EXPECT_EQ(FieldNamesAt("", 1), "");
}

TEST(FieldNames, TellTheHighestOrdinalOfAnEnum) {
    EXPECT_EQ(HighestOrdinal("#0"), 0);
    EXPECT_EQ(HighestOrdinal("#2"), 2);
    EXPECT_EQ(HighestOrdinal(ElementNames("[#6]")), 6);
    for (const char* any : {"", "#", "#x", "(a)", "#255", "#256", "#99999999999"})
        EXPECT_EQ(HighestOrdinal(any), 255) << any;
}

TEST(FieldNames, OfElementsStandInSquareBrackets) {
    EXPECT_EQ(ElementNames("[(a,b)]"), "(a,b)");
    EXPECT_EQ(ElementNames("[[(a)]]"), "[(a)]");
    EXPECT_EQ(ElementNames("(a,b)"), "");
    EXPECT_EQ(ElementNames("[(a"), "");
    EXPECT_EQ(ElementNames(""), "");
    EXPECT_EQ(ElementNames("[]"), "");
}

class NamedVariables : public ::testing::Test {
protected:
    void SetUp() override {
        std::ofstream(source_) << "x";
        DebugEnd();
        DebugStart(2, "", "", "", source_);
        ASSERT_NE(variableTable, nullptr);
        FunctionEnter("C", "f", 1);
    }
    void TearDown() override {
        FunctionLeave();
        DebugEnd();
    }
    static const VariableEntry& last() { return variableTable->entries[variableTable->count - 1]; }
    TempFolder folder_;
    std::string source_ = folder_ / "c.cls";
    int a_ = 0, b_ = 0;
};

TEST_F(NamedVariables, AreTheOneThatWasRegisteredLast) {
    RegisterVariable("a", 'V', 7, &a_);
    NameFields(&a_, "(x)");
    EXPECT_EQ(FieldNames(last()), "(x)");
    RegisterVariable("b", 'V', 7, &b_);
    EXPECT_EQ(FieldNames(last()), "");
    NameFields(&a_, "(y)");
    EXPECT_EQ(FieldNames(last()), "") << "it stands elsewhere";
    EXPECT_EQ(FieldNames(variableTable->entries[0]), "(x)");
}

TEST_F(NamedVariables, OfAFullTableAreNotTaken) {
    for (int i = 0; i < MaxVariables; ++i) RegisterVariable("a", 'V', 7, &a_);
    RegisterVariable("b", 'V', 7, &b_);
    NameFields(&b_, "(x)");
    EXPECT_EQ(FieldNames(last()), "");
}

TEST_F(NamedVariables, AreForgottenWithTheirFunction) {
    RegisterVariable("a", 'V', 7, &a_);
    NameFields(&a_, "(x)");
    FunctionLeave();
    FunctionEnter("C", "g", 2);
    RegisterVariable("a", 'V', 11, &a_);
    EXPECT_EQ(FieldNames(last()), "") << "another kind";
    NameFields(&a_, "");
    EXPECT_EQ(FieldNames(last()), "");
}

TEST_F(NamedVariables, NeedATable) {
    const VariableEntry stranger{};
    EXPECT_EQ(FieldNames(stranger), "");
    DebugEnd();
    NameFields(&a_, "(x)");
    EXPECT_EQ(FieldNames(stranger), "");
}

TEST_F(NamedVariables, ResultsBelongToTheirFrame) {
    RegisterResult(3, &a_);
    FunctionEnter("C", "g", 7);
    EXPECT_EQ(ResultOf(FrameCount()).kind, 0) << "that function has told nothing";
    RegisterResult(6, &b_);
    EXPECT_EQ(ResultOf(FrameCount()).address, &b_);
    EXPECT_EQ(ResultOf(FrameCount() - 1).address, &a_);
    EXPECT_EQ(ResultOf(FrameCount() - 1).kind, 3);
    FunctionLeave();
    EXPECT_EQ(ResultOf(FrameCount() + 1).kind, 0);
    EXPECT_EQ(ResultOf(0).kind, 0);
    FunctionEnter("C", "h", 9);
    EXPECT_EQ(ResultOf(FrameCount()).kind, 0) << "another function at that depth";
    FunctionLeave();
}

TEST_F(NamedVariables, ResultsWithoutAKindOrAPlaceAreNone) {
    for (const int kind : {0, 13, -1}) {
        RegisterResult(kind, &a_);
        EXPECT_EQ(ResultOf(FrameCount()).kind, 0) << kind;
    }
    RegisterResult(3, nullptr);
    EXPECT_EQ(ResultOf(FrameCount()).kind, 0);
}

}  // namespace
}  // namespace tarn
