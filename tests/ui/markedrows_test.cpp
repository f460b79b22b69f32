// SPDX-License-Identifier: Apache-2.0
//
// Rows of an icon list with bold parts: what is drawn, what assistive programs get, and how wide the rows are.
#include "ui/window_fixture.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QImage>
#include <QScrollBar>
#include <QWidget>

namespace tarn::platform {
namespace {

const Object Form("Form"), List("Form", 101);

class MarkedRowsTest : public WindowTest {
protected:
    void SetUp() override {
        ASSERT_EQ(openText(Form,
                           "Form DIALOG\n  CAPTION=\"Form\"\n  POSITION=0 0 120 100\n  ICONLIST rows 101\n"
                           "    POSITION=4 4 110 90\n    SCROLLBARS=3\nEND\n"),
                  "");
        view = shownWindow("Form")->findChild<QAbstractItemView*>();
        ASSERT_NE(view, nullptr);
    }
    // The picture of the first row with this text.
    QImage drawn(const std::string& text) {
        Clear(List);
        AddItem(List, text);
        DoEvents();
        return view->viewport()->grab(view->visualRect(view->model()->index(0, 0))).toImage();
    }
    QAbstractItemView* view = nullptr;
};

TEST_F(MarkedRowsTest, WhatStandsBetweenMarksIsBold) {
    EXPECT_NE(drawn("Class \2Main\2"), drawn("Class Main"));
    EXPECT_NE(drawn("\2Class\2 Main"), drawn("Class \2Main\2"));
    EXPECT_EQ(drawn("Class \2Main"), drawn("Class \2Main\2")) << "up to the end without a second mark";
}

TEST_F(MarkedRowsTest, OthersGetTheTextWithoutMarks) {
    AddItem(List, "Class \2Main\2 (main.cls)");
    DoEvents();
    EXPECT_EQ(view->model()->index(0, 0).data().toString(), u"Class Main (main.cls)");
    EXPECT_EQ(GetList(List, 1).value, "Class \2Main\2 (main.cls)");
}

TEST_F(MarkedRowsTest, TheBarGoesByTheWidestRowWhereverItStands) {
    for (int n = 0; n < 3000; ++n) AddItem(List, n == 2000 ? std::string(200, 'w') : "row");
    for (int n = 0; n < 3; ++n) DoEvents();  // the rows, then their layout
    EXPECT_GT(view->horizontalScrollBar()->maximum(), 500);
    Clear(List);
    AddItem(List, "row");
    for (int n = 0; n < 3; ++n) DoEvents();
    EXPECT_EQ(view->horizontalScrollBar()->maximum(), 0);
}

}  // namespace
}  // namespace tarn::platform
