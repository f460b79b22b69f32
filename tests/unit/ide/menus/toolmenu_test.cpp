// SPDX-License-Identifier: GPL-3.0-or-later
//
// The windows of data files and the command that opens them, on the object model alone.
#include "ide/menus/toolmenu.h"

#include "ide/shell/commands.h"
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/run/progress.h"
#include "kernel/tables/tables.h"
#include "kernel/values/records.h"
#include "library/data/dbutil.h"
#include "library/data/dbutil_grid.h"
#include "library/data/dbutil_windows.h"
#include "os/clock.h"
#include "support/doings_fixture.h"
#include "support/steerable.h"

namespace tarn {
namespace {

class DataFiles : public DoingsTest {
protected:
    static Object in(const Object& window, std::string_view name) { return FINDCONTROL(window, name); }
    static Object setting(std::string_view name) { return in(TabbedFileSetupDlg, name); }
    static void press(const Object& button) { platform::userCommand(*platform::findControl(button)); }
    void expectSettings(const std::string& headers, const std::string& separator) {
        EXPECT_EQ(GetText(setting("numheaderrows")), headers);
        EXPECT_EQ(GetText(setting("numfooterrows")), "0");
        EXPECT_EQ(GetText(setting("separatorchar")), separator);
        EXPECT_EQ(GetText(setting("maxdatarows")), "-1");
    }
    void open(const std::string& file) {
        answers.push_front(file);
        DO_EXPLORE_DB();
    }
    // The settings window without its wait.
    void loadSettings(const std::string& file, const std::string& headers = "1",
                      const std::string& separator = ",") {
        RegisterWindow(TabbedFileSetupDlg, TABBEDFILESETUPDLG);
        Load(TabbedFileSetupDlg);
        SetText(setting("datasource"), file);
        SetText(setting("numheaderrows"), headers);
        SetText(setting("numfooterrows"), "0");
        SetText(setting("separatorchar"), separator);
        SetText(setting("maxdatarows"), "-1");
    }
    std::string preview() {
        asked.clear();
        TABBEDFILESETUPDLG_PREVIEW(TabbedFileSetupDlg);
        return lastText();
    }
    static std::string rows(const Object& list) {
        std::string text;
        for (int row = 1; row <= GetListCount(list); ++row) text += GetList(list, row) + "\n";
        return text;
    }
    static std::string counted() { return GetCaption(setting("actualdatarows")); }
};

// ---- settings ----

TEST_F(DataFiles, TheSettingsAreThoseThatTheFileSuggests) {
    const struct {
        const char *text, *headers, *separator;
    } cases[] = {{"a,b\n1,2\n", "1", ","},
                 {"1,2\n3,4\n", "0", ","},
                 {"name,age\n---,---\nAnn,3\n", "2", ","},
                 {"a\tb\n1\t2\n", "1", "\\t"},
                 {"a;b\n1;2\n", "1", ";"}};
    for (const auto& one : cases) {
        const std::string file = write("x.csv", one.text);
        doings = {[&] {
            EXPECT_EQ(GetText(setting("datasource")), file);
            expectSettings(one.headers, one.separator);
            press(setting("idcancel"));
        }};
        RecordDescriptor options{};
        EXPECT_EQ(TABBEDFILESETUPDIALOG(Main, file, &options), FormatUnknown) << one.text;
        EXPECT_EQ(options.data, 0U) << "nothing was confirmed";
        EXPECT_FALSE(IsLoaded(TabbedFileSetupDlg));
    }
}

TEST_F(DataFiles, TheSeparatorDecidesTheFormat) {
    const struct {
        const char* separator;
        DataFormat format;
        std::int32_t code;
    } cases[] = {{",", FormatComma, ','},
                 {"\\t", FormatTab, '\t'},
                 {";", FormatTab, ';'},
                 {" ", FormatTab, ' '},
                 {"','", FormatComma, ','}};
    const std::string file = write("x.csv", "a,b\n1,2\n");
    for (const auto& one : cases) {
        doings = {[&] {
            SetText(setting("separatorchar"), one.separator);
            SetText(setting("numheaderrows"), "2");
            SetText(setting("numfooterrows"), " 1");
            SetText(setting("maxdatarows"), "5000");
            press(setting("idok"));
        }};
        RecordValue record;
        EXPECT_EQ(TABBEDFILESETUPDIALOG(Main, file, record.get()), one.format) << one.separator;
        const DataOptions options = DataOptionsOf(record.get(), FormatComma);
        EXPECT_EQ(options.numheaderrows, 2);
        EXPECT_EQ(options.numfooterrows, 1);
        EXPECT_EQ(options.separatorchar, one.code);
        EXPECT_EQ(options.maxdatarows, 5000);
    }
}

TEST_F(DataFiles, APreviewShowsColumnsAndRows) {
    loadSettings(write("x.csv", "first name,age,end\nAnn,31,1.5\nBob,4,2\n"));
    EXPECT_EQ(preview(), "");
    EXPECT_EQ(counted(), "2 row(s), 3 column(s)");
    EXPECT_EQ(GetCaption(setting("iconlist1")), "first_name\tage\tend_1") << "names that programs can use";
    EXPECT_EQ(rows(setting("iconlist1")), "Ann\t31\t1.5\nBob\t4\t2\n");
    SetText(setting("numheaderrows"), "0");
    SetText(setting("maxdatarows"), "1");
    EXPECT_EQ(preview(), "");
    EXPECT_EQ(counted(), "1 row(s), 3 column(s)");
    EXPECT_EQ(GetCaption(setting("iconlist1")), "FIELD1\tFIELD2\tFIELD3");
}

TEST_F(DataFiles, APreviewKeepsEqualRowsAndTheirOrder) {
    loadSettings(write("x.csv", "a,b\n2,x\n1,y\n2,x\n"));
    EXPECT_EQ(preview(), "");
    EXPECT_EQ(rows(setting("iconlist1")), "2\tx\n1\ty\n2\tx\n");
}

TEST_F(DataFiles, APreviewTellsTheFirstThatIsWrong) {
    const std::string file = write("x.csv", "a,b\n1,2\n"), none = dir + "none.csv";
    const std::string empty = write("empty.csv", "");
    const struct {
        std::string file, headers, footers, rows, separator, message;
    } cases[] = {
        {none, "9", "9", "9999", "", "File '" + none + "' is empty or does not exist."},
        {empty, "1", "0", "-1", ",", "File '" + empty + "' is empty or does not exist."},
        {file, "3", "3", "1001", "", "Header rows should be between 0 and 2."},
        {file, "2", "-1", "1001", "", "Footer rows should be between 0 and 2."},
        {file, "2", "2", "1001", "", "Rows to read should be between -1 and 1000."},
        {file, "2", "2", "-2", "", "Rows to read should be between -1 and 1000."},
        {file, "2", "2", "1000", "", "Separator should be one character, or \\t for a tab."},
        {file, "2", "2", "1000", "ab", "Separator should be one character, or \\t for a tab."},
    };
    for (const auto& one : cases) {
        loadSettings(one.file, one.headers, one.separator);
        SetText(setting("numfooterrows"), one.footers);
        SetText(setting("maxdatarows"), one.rows);
        AddItem(setting("iconlist1"), "an old row");
        EXPECT_EQ(preview(), one.message);
        EXPECT_EQ(asked.back().title, "Text File Settings");
        EXPECT_EQ(GetListCount(setting("iconlist1")), 0) << "nothing of the last preview stays";
        EXPECT_EQ(counted(), "");
    }
}

TEST_F(DataFiles, APreviewTellsWhyThereAreNoColumns) {
    const std::string file = write("x.csv", "\n\n\n\n\n\n");
    loadSettings(file, "0");
    const std::string told = preview();
    EXPECT_EQ(told, "Cannot preview the file, an error occurred while finding the columns.\n" +
                        GetDataFileInfo(file, nullptr).message);
    EXPECT_EQ(counted(), "");
}

TEST_F(DataFiles, WrongSettingsAreNotConfirmed) {
    const std::string file = write("x.csv", "a,b\n1,2\n");
    doings = {[&] {
                  SetText(setting("numheaderrows"), "x");
                  press(setting("idok"));
                  EXPECT_EQ(lastText(), "Header rows should be between 0 and 2.");
                  EXPECT_TRUE(GetVisible(TabbedFileSetupDlg));
              },
              [&] { press(setting("idcancel")); }};
    RecordValue record;
    EXPECT_EQ(TABBEDFILESETUPDIALOG(Main, file, record.get()), FormatUnknown);
}

// ---- the view ----

class View : public DataFiles {
protected:
    void make(const std::string& text) {
        const std::string file = write("x.csv", text);
        DataOptions options;
        options.numheaderrows = 1;
        data = LOADDATATABLE(file, &options, FormatComma);
        ASSERT_EQ(data.step, DataTable::Step::Done) << data.message;
    }
    static Object list() { return in(TableViewDlg, "iconlist1"); }
    DataTable data;
};

TEST_F(View, GivesTheRowThatWasPicked) {
    make("name,age\nBob,4\nAnn,31\n");
    doings = {[] {
        EXPECT_EQ(GetCaption(list()), "name\tage");
        EXPECT_EQ(GetCaption(in(TableViewDlg, "lblrows")), "2 row(s), 2 column(s)");
        platform::userRow(*platform::findControl(list()), 2);
        press(in(TableViewDlg, "idok"));
    }};
    const TableViewChoice choice = TABLEVIEWDIALOG(Main, "", "", data.table.get());
    EXPECT_TRUE(choice.selected);
    EXPECT_EQ(choice.rowNumber, 2);
    EXPECT_EQ(choice.result, "Ann\t31");
    EXPECT_FALSE(IsLoaded(TableViewDlg));
}

TEST_F(View, ADoubleClickPicks) {
    make("name\nBob\nAnn\n");
    doings = {[] {
        platform::userRow(*platform::findControl(list()), 1);
        platform::userDoubleClick(*platform::findControl(list()), 1, 1);
    }};
    EXPECT_EQ(TABLEVIEWDIALOG(Main, "", "", data.table.get()).result, "Bob");
}

TEST_F(View, NothingIsPickedWithoutARowAndByCancel) {
    make("name\nBob\n");
    doings = {[] { press(in(TableViewDlg, "idok")); }};
    TableViewChoice choice = TABLEVIEWDIALOG(Main, "", "", data.table.get());
    EXPECT_FALSE(choice.selected);
    EXPECT_EQ(choice.rowNumber, 0);
    doings = {[] {
        platform::userRow(*platform::findControl(list()), 1);
        press(in(TableViewDlg, "idcancel"));
    }};
    choice = TABLEVIEWDIALOG(Main, "", "", data.table.get());
    EXPECT_FALSE(choice.selected);
    EXPECT_EQ(choice.result, "");
}

TEST_F(View, TitlesAndWidthsAreThoseOfTheCaller) {
    make("name,age,city\nBob,4,Rome\n");
    doings = {[] {
        EXPECT_EQ(GetCaption(list()), "Who   \tHow old\tWhere");
        EXPECT_EQ(GETCOLUMNPOSITION(list(), "who"), 1);
        EXPECT_EQ(GETLISTCOLUMNVALUE(list(), 1, "Where"), "Rome");
        press(in(TableViewDlg, "idcancel"));
    }};
    TABLEVIEWDIALOG(Main, "Who\tHow old\tWhere", "6, 2", data.table.get());
}

TEST_F(View, AWindowThatOnlyShowsHasOneButton) {
    make("name\nBob\n");
    doings = {[] {
                  EXPECT_EQ(GetCaption(TableViewDlg), "people.csv");
                  EXPECT_FALSE(GetVisible(in(TableViewDlg, "idok")));
                  EXPECT_EQ(GetCaption(in(TableViewDlg, "idcancel")), "Close");
                  platform::userRow(*platform::findControl(list()), 1);
                  platform::userDoubleClick(*platform::findControl(list()), 1, 1);
                  EXPECT_TRUE(GetVisible(TableViewDlg));
              },
              [] { platform::userKey(*platform::findWindow(TableViewDlg), nullptr, KEY_ESCAPE); }};
    EXPECT_FALSE(TABLEVIEWDIALOG(Main, "", "", data.table.get(), "people.csv").selected);
}

TEST_F(View, TheListTakesTheRoomThatTheWindowGains) {
    make("name\nBob\n");
    doings = {[] {
        const Rect before = GetPosition(list(), CLIENT_UNIT);
        const Rect button = GetPosition(in(TableViewDlg, "idcancel"), CLIENT_UNIT);
        Rect frame = GetPosition(TableViewDlg, WINDOW_UNIT);
        frame.w += 100;
        frame.h += 50;
        platform::userMoved(*platform::findWindow(TableViewDlg), frame, 0);
        const Rect after = GetPosition(list(), CLIENT_UNIT);
        const Rect moved = GetPosition(in(TableViewDlg, "idcancel"), CLIENT_UNIT);
        EXPECT_EQ(after.w - before.w, 100);
        EXPECT_NEAR(after.h - before.h, 50, 12);
        EXPECT_EQ(moved.x - button.x, 100);
        EXPECT_NEAR(moved.y - button.y, 50, 12);
        EXPECT_LT(after.y + after.h, moved.y);
        press(in(TableViewDlg, "idcancel"));
    }};
    TABLEVIEWDIALOG(Main, "", "", data.table.get());
}

// ---- the command ----

TEST_F(DataFiles, TheCommandHasAHandler) {
    EXPECT_TRUE(HASHANDLER("tools_explore_db"));
}

TEST_F(DataFiles, NoFileIsNoCommand) {
    open("");
    ASSERT_EQ(asked.size(), 1U);
    EXPECT_EQ(asked[0].kind, platform::Question::Kind::OpenFile);
    EXPECT_EQ(asked[0].title, "Tools-Explore Data File");
}

TEST_F(DataFiles, EachBrokenFileIsToldWithTheNextStep) {
    const std::string data = "\n\nChoose a file that holds data.";
    const std::string other = "\n\nUse File-Open to see what is in the file, or choose another file.";
    const struct {
        std::string name, text, message;
    } cases[] = {
        {"empty.csv", "", " is invalid, does not exist or is empty." + data},
        {"zero.bin", std::string(8, '\0'), " is invalid, does not exist or is empty." + other},
        {"strange.dat", "\x01\x02\x03\x04",
         " is an unknown file type (first four bytes = 01 02 03 04)." + other},
        {"hollow.xml", "<data></data>", " contains no XML data apart from the outermost element." + other},
    };
    for (const auto& one : cases) {
        const std::string file = write(one.name, one.text);
        open(file);
        EXPECT_EQ(lastText(), "File '" + file + "'" + one.message);
        EXPECT_EQ(asked.back().title, "Tools-Explore Data File");
    }
    open(dir + "none.csv");
    EXPECT_EQ(lastText(), "File '" + dir + "none.csv' is invalid, does not exist or is empty." + data);
}

TEST_F(DataFiles, ABrokenXmlFileIsToldWithItsPlace) {
    const std::string file = write("broken.xml", "<data><row><a>1</a></data>");
    open(file);
    EXPECT_EQ(lastText(), GetDataFileInfo(file, nullptr).message +
                              "\n\nUse File-Open to see what is in the file, or choose another file.");
    EXPECT_NE(lastText().find("(Line 1, Position "), std::string::npos) << lastText();
}

TEST_F(DataFiles, RowsOfUnevenLengthAreAllShown) {
    const std::string file = write("odd.csv", "a,b\n1,2\n1,2,3\n4,\n");
    doings = {[] { press(setting("idok")); },
              [&] {
                  EXPECT_EQ(GetCaption(TableViewDlg), file);
                  EXPECT_EQ(rows(in(TableViewDlg, "iconlist1")), "1\t2\t0\n1\t2\t3\n4\t0\t0\n");
                  press(in(TableViewDlg, "idcancel"));
              }};
    open(file);
}

TEST_F(DataFiles, AFileThatIsGoneAfterItsSettingsIsTold) {
    const std::string file = write("x.csv", "a,b\n1,2\n");
    doings = {[&] {
        write("x.csv", "\n\n\n\n\n\n\n");
        press(setting("idok"));
    }};
    open(file);
    EXPECT_EQ(lastText(),
              GetDataFileInfo(file, nullptr).message +
                  "\n\nChoose the file again and change its settings. 'Preview' shows what they give.");
    EXPECT_FALSE(IsLoaded(TableViewDlg));
}

// ---- long reads ----

// A clock on which each look takes a while, so that a small file is a long read.
class SlowClock : public os::SteeredClock {
public:
    std::int64_t steady() override {
        advance(600'000'000);
        return SteeredClock::steady();
    }
};

class LongReads : public DataFiles {
protected:
    void SetUp() override {
        DataFiles::SetUp();
        std::string text = "name,age\n";
        while (text.size() < 4'000'000) text += "Ann Other Name,31\nBob Some Name,44\n";
        file = write("long.csv", text);
        before = os::useClock(&clock);
    }
    void TearDown() override {
        os::useClock(before);
        DataFiles::TearDown();
    }
    // Presses Stop as soon as there is one; until then does what is to be done.
    void stopWhenPossible() {
        platform::view().setIdle([this] {
            if (platform::pressToolStop()) return;
            if (doings.empty()) return platform::QuitMainLoop();
            const auto next = doings.front();
            doings.pop_front();
            next();
        });
    }
    std::string file;
    SlowClock clock;
    os::Clock* before = nullptr;
};

TEST_F(LongReads, AReadThatIsStoppedGivesNoTable) {
    DataOptions options;
    options.numheaderrows = 1;
    stopWhenPossible();
    const DataTable data = LOADDATATABLE(file, &options, FormatComma);
    EXPECT_EQ(data.step, DataTable::Step::Stopped);
    EXPECT_EQ(data.message, "");
    EXPECT_FALSE(platform::pressToolStop()) << "the progress is gone";
    EXPECT_EQ(UseProgress(nullptr), nullptr);
}

TEST_F(LongReads, AFileWithMoreRowsThanATableHoldsShowsItsFirst) {
    DataOptions options;
    options.numheaderrows = 1;
    const DataTable data = LOADDATATABLE(file, &options, FormatComma);
    EXPECT_EQ(data.step, DataTable::Step::Done) << data.message;
    constexpr int most = MaxBlock / KindSize[KindRecord];
    EXPECT_EQ(TableCount(data.table.get()), most);
    EXPECT_EQ(data.remark,
              "Only the first " + STR(most) + " rows are shown, a table in memory holds no more.");
}

TEST_F(LongReads, RowsThatAreLeftOutAreToldBeforeTheOthersAreShown) {
    constexpr int most = MaxBlock / KindSize[KindRecord];
    os::useClock(before);
    doings = {[] { press(setting("idok")); },
              [&] {
                  EXPECT_EQ(GetListCount(in(TableViewDlg, "iconlist1")), most);
                  EXPECT_EQ(GetCaption(in(TableViewDlg, "lblrows")), STR(most) + " row(s), 2 column(s)");
                  press(in(TableViewDlg, "idcancel"));
              }};
    // Doings of the user wait until a window does.
    platform::view().setIdle([this] {
        if (platform::busy() || doings.empty()) return;
        const auto next = doings.front();
        doings.pop_front();
        next();
    });
    open(file);
    EXPECT_EQ(lastText(), "Not all of '" + file + "' could be read as it stands.\nOnly the first " +
                              STR(most) + " rows are shown, a table in memory holds no more.");
}

TEST_F(LongReads, APreviewThatIsStoppedSaysSo) {
    loadSettings(file);
    stopWhenPossible();
    EXPECT_EQ(preview(), "");
    EXPECT_EQ(counted(), "Stopped");
    EXPECT_EQ(GetListCount(setting("iconlist1")), 0);
}

TEST_F(LongReads, ACommandThatIsStoppedShowsNothing) {
    doings = {[] { press(setting("idok")); }};
    stopWhenPossible();
    open(file);
    EXPECT_EQ(asked.size(), 1U) << "only the file was asked for";
    EXPECT_FALSE(IsLoaded(TableViewDlg));
    EXPECT_FALSE(platform::busy());
}

}  // namespace
}  // namespace tarn
