// SPDX-License-Identifier: GPL-3.0-or-later
//
// Printing from the File menu, on the printer of the model, which writes the pages of a document as plain text.
#include "ide/menus/filemenu.h"

#include "ide/build/textview.h"
#include "library/dialogs/commdlgs_print.h"
#include "support/ide_fixture.h"

namespace tarn {
namespace {

class Print : public IdeTest {
protected:
    static constexpr const char* ToFile = "Print to file";
    void SetUp() override {
        IdeTest::SetUp();
        start();
        asked.clear();
    }
    void open(const std::string& name, const std::string& text) {
        EDITWNDOPEN(SDIEdit, write(name, text), false, 0);
        asked.clear();
    }
    // Prints to the file `out`; the pages, without their headings, which are looked at.
    std::vector<std::string> pages(const std::string& choice = ToFile) {
        std::filesystem::remove(dir + "out.txt");
        answers = {choice, dir + "out.pdf"};
        pick("file_print");
        std::vector<std::string> list;
        const std::string all = read(dir + "out.txt");
        for (std::size_t at = 0; !all.empty() && at <= all.size();) {
            const std::size_t end = std::min(all.find('\f', at), all.size());
            list.push_back(all.substr(at, end - at));
            at = end + 1;
        }
        return list;
    }
    static std::string body(const std::string& page) { return page.substr(page.find('\n') + 1); }
    static std::string heading(const std::string& page) { return page.substr(0, page.find('\n')); }
};

TEST_F(Print, NeedsATextAndACaption) {
    pick("file_print");
    EXPECT_EQ(lastText(), "Nothing to print");
    open("a.txt", "");
    pick("file_print");
    EXPECT_EQ(lastText(), "Nothing to print");
    open("b.txt", "text");
    SetCaption(SDIEdit, "");
    pick("file_print");
    EXPECT_EQ(lastText(), "Nothing to print");
}

TEST_F(Print, PutsNameAndPageOverEachPage) {
    std::string text;
    for (int i = 1; i <= 200; i++) text += "line " + STR(i) + "\n";
    open("a.txt", text);
    const std::vector<std::string> all = pages();
    ASSERT_EQ(all.size(), 3U);
    std::string joined;
    for (std::size_t i = 0; i < all.size(); i++) {
        EXPECT_NE(heading(all[i]).find("a.txt"), std::string::npos) << heading(all[i]);
        EXPECT_TRUE(heading(all[i]).ends_with(" Page " + std::to_string(i + 1))) << heading(all[i]);
        joined += body(all[i]);
    }
    EXPECT_EQ(joined, text);
    EXPECT_EQ(asked.size(), 2U) << "the printer and the file";
    EXPECT_EQ(asked[1].title, "Print to File");
}

TEST_F(Print, DoesNotPrintTheMarkOfAChange) {
    open("a.txt", "text");
    type("\nmore");
    ASSERT_TRUE(GetCaption(SDIEdit).ends_with(" *"));
    const std::vector<std::string> all = pages();
    ASSERT_EQ(all.size(), 1U);
    EXPECT_EQ(heading(all[0]).find('*'), std::string::npos);
    EXPECT_EQ(body(all[0]), "text\nmore\n") << "as it stands in the window";
}

TEST_F(Print, BreaksLongLinesAndKeepsEmptyOnes) {
    open("a.txt", std::string(150, 'x') + "\n\n\tend\r\n");
    const std::vector<std::string> all = pages();
    ASSERT_EQ(all.size(), 1U);
    EXPECT_EQ(body(all[0]), std::string(116, 'x') + "\n" + std::string(34, 'x') + "\n\n    end\n");
}

TEST_F(Print, OffersTheSelectionWhereThereIsOne) {
    open("a.txt", "one\ntwo\nthree\n");
    EXPECT_EQ(body(pages()[0]), "one\ntwo\nthree\n");
    EXPECT_EQ(asked[0].value, "");
    SetSelection(SDIEdit, 5, 3);
    asked.clear();
    EXPECT_EQ(body(pages(std::string(ToFile) + "\tselection")[0]), "two\n");
    EXPECT_EQ(asked[0].value, "\tselection");
    EXPECT_EQ(body(pages()[0]), "one\ntwo\nthree\n") << "the whole text, if the user wants that";
}

TEST_F(Print, PrintsAPartOfThePages) {
    std::string text;
    for (int i = 1; i <= 300; i++) text += "line " + STR(i) + "\n";
    open("a.txt", text);
    const std::vector<std::string> whole = pages();
    ASSERT_EQ(whole.size(), 4U);
    const struct {
        const char* range;
        std::size_t first, count;
    } cases[] = {{"\t\t2\t3", 1, 2}, {"\t\t\t1", 0, 1}, {"\t\t4\t", 3, 1}, {"\t\t2\t99", 1, 3}};
    for (const auto& one : cases) {
        const std::vector<std::string> part = pages(std::string(ToFile) + one.range);
        ASSERT_EQ(part.size(), one.count) << one.range;
        for (std::size_t i = 0; i < one.count; i++) EXPECT_EQ(part[i], whole[one.first + i]) << one.range;
    }
    EXPECT_TRUE(pages(std::string(ToFile) + "\t\t5\t").empty());
    EXPECT_EQ(lastText(), "There is no page 5: the text has 4 page(s).");
}

TEST_F(Print, CancelAtEitherQuestionPrintsNothing) {
    open("a.txt", "text");
    EXPECT_TRUE(pages("").empty());
    EXPECT_EQ(asked.size(), 1U);
    answers = {ToFile, ""};
    pick("file_print");
    EXPECT_FALSE(std::filesystem::exists(dir + "out.txt"));
    EXPECT_EQ(answers.size(), 0U);
    EXPECT_EQ(ErrorCell(), 0);
}

TEST_F(Print, TellsWhatToDoWhenTheFileCannotBeWritten) {
    open("a.txt", "text");
    answers = {ToFile, dir + "none/out.pdf"};
    pick("file_print");
    EXPECT_EQ(lastText(), "The file '" + dir +
                              "none/out.pdf' could not be written.\nChoose another folder, or make room on "
                              "the disk, and try again.");
    EXPECT_TRUE(asked.back().title == "Print");
    EXPECT_EQ(body(pages()[0]), "text\n") << "the printer is free again";
}

TEST_F(Print, AsksBeforeAFileWithoutTheExtensionIsReplaced) {
    open("a.txt", "text");
    write("out.pdf", "old");
    answers = {ToFile, dir + "out", "&No"};
    pick("file_print");
    EXPECT_EQ(lastText(), "The file '" + dir + "out.pdf' exists. Do you want to replace it?");
    EXPECT_FALSE(std::filesystem::exists(dir + "out.txt"));
    answers = {ToFile, dir + "out", "&Yes"};
    pick("file_print");
    EXPECT_TRUE(std::filesystem::exists(dir + "out.txt"));
}

TEST_F(Print, ProposesTheNameOfTheTextForTheFile) {
    open("a.b.txt", "text");
    pages();
    EXPECT_TRUE(asked[1].value.ends_with("/a.b.pdf")) << asked[1].value;
    pick("file_new_textfile");
    type("text");
    asked.clear();
    pages();
    ASSERT_EQ(asked.size(), 2U);
    EXPECT_EQ(asked[1].value, "untitled.pdf");
}

TEST_F(Print, TakesTheErrorWindowWhenItWasActiveLast) {
    open("a.txt", "text");
    VIEWDIALOG("View Errors", write("e.txt", "an error\n"), "", 0);
    SetCaption(MAINCONTROL("lbllastactive"), "viewdlg");
    EXPECT_EQ(body(pages()[0]), "an error\n");
    Hide(ViewDlg);
    EXPECT_EQ(body(pages()[0]), "text\n");
}

TEST_F(Print, UsesTheWindowsFontOrAPlainOne) {
    open("a.txt", "text");
    SetFontName(SDIEdit, "DejaVu Sans Mono");
    SetFontSize(SDIEdit, 13);
    pages();
    const Object printer = PrinterList().back();
    EXPECT_EQ(GetFontName(printer), "DejaVu Sans Mono");
    EXPECT_EQ(GetFontSize(printer), 13);
    SetFontName(SDIEdit, "");
    pages();
    EXPECT_EQ(GetFontName(printer), "Courier New");
    EXPECT_EQ(GetFontSize(printer), 10);
}

TEST_F(Print, PrintsEightyThousandLines) {
    std::string text;
    for (int i = 1; i <= 80000; i++) text += "x" + STR(i) + "\n";
    open("a.txt", text);
    const std::vector<std::string> all = pages();
    EXPECT_GT(all.size(), 1000U);
    std::string joined;
    for (const std::string& page : all) joined += body(page);
    EXPECT_EQ(joined, text);
}

TEST_F(Print, PrinterSetupKeepsTheNameThatIsChosenForTheNextPrint) {
    answers = {""};
    pick("file_printer_setup");
    EXPECT_EQ(asked.back().title, "Printer Setup");
    EXPECT_EQ(asked.back().text, "Choose printer from list below:");
    EXPECT_EQ(asked.back().rows, std::vector<std::string>{ToFile});
    EXPECT_EQ(GetCaption(MAINCONTROL("printername")), "");
    answers = {ToFile};
    pick("file_printer_setup");
    EXPECT_EQ(GetCaption(MAINCONTROL("printername")), ToFile);
    answers = {""};
    pick("file_printer_setup");
    EXPECT_EQ(GetCaption(MAINCONTROL("printername")), ToFile) << "nothing chosen changes nothing";
    open("a.txt", "text");
    pages();
    EXPECT_EQ(asked[0].value, ToFile);
}

}  // namespace
}  // namespace tarn
