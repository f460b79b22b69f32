// SPDX-License-Identifier: Apache-2.0
//
// What is given to a resource file comes back: values with any bytes, and names that are numbers.
#include "unit/platform/resource_fixture.h"

#include "platform/model/view.h"
#include "platform/resources/rcx.h"
#include "platform/windowing.h"

namespace tarn::platform {
namespace {

class ResourceGivenTest : public ResourceTest {
protected:
    // Writes one control with `line` and gives that line as it is read back, from a new file and from one
    // that already holds the dialog.
    std::string back(const std::string& type, const std::string& line) {
        ObjectArray array{};
        array[0] = "NAME=Given\nTYPEOF=Dialog\n";
        array[1] = "NAME=one\nTYPEOF=" + type + "\n" + line + "\n";
        const std::string fresh = folder / "fresh.rc";
        write(fresh, "");
        EXPECT_EQ(ResourceWrite(array, {}, fresh), "");
        const std::string first = lineOf(fresh, line);
        write(fresh, "Given DIALOG\nLabel one 1\n" + line.substr(0, line.find('=')) + "=\"other\"\nEND\n");
        EXPECT_EQ(ResourceWrite(array, {}, fresh), "");
        EXPECT_EQ(lineOf(fresh, line), first) << "written over another value";
        const std::string text = read(fresh);
        ObjectArray again;
        EXPECT_EQ(ResourceRead(fresh, "Given", again), "");
        EXPECT_EQ(ResourceWrite(again, {}, fresh), "");
        EXPECT_EQ(read(fresh), text) << "written unchanged";
        return first;
    }
    static std::string lineOf(const std::string& file, const std::string& line) {
        ObjectArray again;
        EXPECT_EQ(ResourceRead(file, "Given", again), "");
        const std::size_t at = again[1].find("\n" + line.substr(0, line.find('=') + 1));
        EXPECT_NE(at, std::string::npos) << again[1];
        return at == std::string::npos ? "" : again[1].substr(at + 1, again[1].find('\n', at + 1) - at - 1);
    }
};

// ---- values ----

TEST_F(ResourceGivenTest, ALineComesBackAsItWas) {
    const std::pair<const char*, const char*> lines[] = {
        {"Label", "ODD= two blanks  "},
        {"Label", "ODD=\t a tab \t"},
        {"Label", "ODD= // no comment"},
        {"Label", "ODD=a \"b\" c"},
        {"Label", "ODD=\"open"},
        {"Label", "ODD=\""},
        {"Label", "ODD=a=b"},
        {"Label", "ODD=C:\\new\\0"},
        {"Label", "ODD=ends in a backslash\\"},
        {"Label", "ODD=a\rb\r"},
        {"Label", "ODD=\r"},
        {"Label", "ODD="},
        {"Label", "POSITION= 1 2 3 4 "},
        {"Label", "POSITION=12 8\r80 14"},
        {"Label", "ALIGNMENT= 1"},
        {"Label", "CAPTION=\" blanks \""},
        {"Label", "CAPTION=\"a\rb\""},
        {"Label", "CAPTION=\"a\r\""},
        {"Label", "CAPTION=\"a\\rb\""},
        {"Label", "CAPTION=\"a\\nb\\0c\""},
        {"Label", "CAPTION=\"a\\\\nb\""},
        {"Label", "CAPTION=\"// no comment\""},
        {"Label", "CAPTION=\"say \"yes\"\""},
        {"Label", "CAPTION=\"\"\""},
        {"Label", "CAPTION=\"\\\""},
        {"Label", "CAPTION=\"\x01\x1f\x7f\x80\xff\""},
        {"Icon", "PICTURE=\"C:\\new\\open.bmp\""},
        {"Icon", "PICTURE=\"\\\\server\\new\\\""},
        {"Icon", "PICTURE=\" a \rb\""},
        {"Icon", "PICTURE=\"<RESOURCEDIR>\\r.bmp\""},
        {"Icon", "PICTURE=\"a\"b\""},
    };
    for (const auto& [type, line] : lines) EXPECT_EQ(back(type, line), line);
}

TEST_F(ResourceGivenTest, ATextWithoutQuotesComesBackInQuotes) {
    EXPECT_EQ(back("Label", "CAPTION=&One"), "CAPTION=\"&One\"");
    EXPECT_EQ(back("Label", "CAPTION= two "), "CAPTION=\" two \"");
    EXPECT_EQ(back("Label", "CAPTION=a\r"), "CAPTION=\"a\r\"");
    EXPECT_EQ(back("Label", "CAPTION=\"open"), "CAPTION=\"\"open\"");
    EXPECT_EQ(back("Icon", "PICTURE=C:\\new"), "PICTURE=\"C:\\new\"");
    EXPECT_EQ(back("Label", "ODD=\"quoted\""), "ODD=quoted");
    EXPECT_EQ(back("Label", "ODD=\" quoted \""), "ODD= quoted ");
}

TEST_F(ResourceGivenTest, AChoiceComesBackAsItsNumber) {
    EXPECT_EQ(back("Label", "ENABLED=0-No"), "ENABLED=0");
    EXPECT_EQ(back("Label", "ALIGNMENT=Centre"), "ALIGNMENT=2");
    EXPECT_EQ(back("Label", "ALIGNMENT=CENTRE"), "ALIGNMENT=2");
    EXPECT_EQ(back("Label", "ALIGNMENT=nowhere"), "ALIGNMENT=nowhere");
    EXPECT_EQ(back("Label", "ALIGNMENT=-1"), "ALIGNMENT=-1");
    EXPECT_EQ(back("Scrollbar", "MINIMUM=-5"), "MINIMUM=-5");
}

TEST_F(ResourceGivenTest, ReadingGivesChoicesAsNumbersAndWritingKeepsTheirWords) {
    const std::string text = "D DIALOG\nLabel a\nALIGNMENT=Centre // as it looks\nENABLED=1-Yes\nEND\n";
    write(rc, text);
    const ObjectArray array = objects("D");
    EXPECT_NE(array[1].find("\nALIGNMENT=2\n"), std::string::npos) << array[1];
    EXPECT_NE(array[1].find("\nENABLED=1\n"), std::string::npos) << array[1];
    EXPECT_EQ(ResourceWrite(array, {}, rc), "");
    EXPECT_EQ(read(rc), text);
}

TEST_F(ResourceGivenTest, BlanksAroundAValueOfTheFileDoNotCount) {
    write(rc, "D DIALOG\nLabel a\nODD \t=\t  two words \t // a comment\nEND\n");
    EXPECT_NE(objects("D")[1].find("\nODD=two words\n"), std::string::npos);
}

TEST_F(ResourceGivenTest, PropertiesThatTheTypeDoesNotKnowComeBackInTheirOrder) {
    const std::string text = "D DIALOG\nLabel a\nONE=1\n// c\nTWO=2\nONE=again\nVISIBLE=0\nEND\n";
    const std::pair<const char*, const char*> cases[] = {
        {"ONE=1\nTWO=2\n", "ONE=1\n// c\nTWO=2\nONE=again\nVISIBLE=0\n"},
        {"ONE=1\nTWO=3\nNEW=4\n", "ONE=1\n// c\nTWO=3\nONE=again\nVISIBLE=0\nNEW=4\n"},
        {"TWO=2\nONE=1\n", "// c\nVISIBLE=0\nTWO=2\nONE=1\n"},
        {"NEW=4\nONE=1\nTWO=2\n", "// c\nVISIBLE=0\nNEW=4\nONE=1\nTWO=2\n"},
        {"TWO=2\n", "// c\nTWO=2\nVISIBLE=0\n"},
    };
    for (const auto& [given, written] : cases) {
        write(rc, text);
        ObjectArray array = objects("D");
        array[1] = replaced(array[1], "ONE=1\nTWO=2\n", given);
        EXPECT_EQ(ResourceWrite(array, {}, rc), "");
        EXPECT_EQ(read(rc), "D DIALOG\nLabel a\n" + std::string(written) + "END\n");
        EXPECT_EQ(objects("D"), array) << given;
    }
}

TEST_F(ResourceGivenTest, AListEndsBeforeAZeroByte) {
    ObjectArray array{};
    array[0] = std::string("NAME=D\nTYPEOF=Dialog\nCAPTION=\"x\"\n\0CLOSEBOX=0\n", 45);
    ASSERT_EQ(ResourceWrite(array, {}, folder / "z.rc"), "");
    EXPECT_EQ(read(folder / "z.rc"), "D DIALOG\n  CAPTION=\"x\"\nEND\n");
}

TEST_F(ResourceGivenTest, ElementsOfExactlyTheirCapacityComeBack) {
    for (const char* filler : {"x", "\"", "\\", "\xff", "\\n", "=", "/"})
        for (const std::size_t size : {1023u, 1024u}) {
            ObjectArray array = objects("Main");
            for (ObjectArray::size_type i : {0u, 1u}) {
                const std::size_t at = array[i].find("CAPTION=\"") + 9, end = array[i].find("\"\n", at);
                std::string caption;
                while (array[i].size() - (end - at) + caption.size() + std::string(filler).size() <= size)
                    caption += filler;
                array[i].replace(at, end - at, caption);
                const std::size_t rest = size - array[i].size();
                array[i].insert(at, std::string(rest, 'y'));
                ASSERT_EQ(array[i].size(), size);
            }
            ASSERT_EQ(ResourceWrite(array, {}, rc), "");
            EXPECT_EQ(objects("Main"), array) << filler;
            write(rc, example);
        }
}

// ---- names that are numbers ----

TEST_F(ResourceGivenTest, ControlsMayBeNamedByTheirNumber) {
    ObjectArray array{};
    array[0] = "NAME=Numbers\nTYPEOF=Dialog\n";
    array[1] = "NAME=17\nTYPEOF=Label\n";
    array[2] = "NAME=-1\nTYPEOF=Label\n";
    array[3] = "NAME=-1\nTYPEOF=Groupbox\n";
    array[4] = "NAME=007\nTYPEOF=Edit\n";
    array[5] = "NAME=plain\nTYPEOF=Edit\n";
    array[6] = "NAME=\nTYPEOF=Label\n";
    const std::string file = folder / "numbers.rc";
    ASSERT_EQ(ResourceWrite(array, {}, file), "");
    rc = file;
    const ObjectArray back = objects("Numbers");
    const char* const names[] = {"17", "-1", "-1", "007", "plain", ""};
    for (std::size_t i = 0; i < 6; ++i)
        EXPECT_TRUE(back[i + 1].starts_with("NAME=" + std::string(names[i]) + "\n")) << back[i + 1];
    EXPECT_EQ(info("CONTROLS", "Numbers"), "17 17\n-1 -1\n-1 -1\n007 7\nplain 101\n");
    const std::string text = read(file);
    EXPECT_EQ(ResourceWrite(back, {}, file), "");
    EXPECT_EQ(read(file), text);
    EXPECT_EQ(objects("Numbers"), back);
}

TEST_F(ResourceGivenTest, NamesThatAreNumbersChangeInTheirHeads) {
    const std::string text = "D DIALOG\n  // c\n  Label 17  // d\n    CAPTION=\"x\"\nEND\n";
    const std::pair<const char*, const char*> cases[] = {{"18", "Label 18  // d"},
                                                         {"-1", "Label -1  // d"},
                                                         {"", "Label  // d"},
                                                         {"named", "Label named 17  // d"},
                                                         {"IDOK", "Label IDOK  // d"}};
    for (const auto& [name, head] : cases) {
        write(rc, text);
        ObjectArray array = objects("D");
        array[1] = replaced(array[1], "NAME=17\n", "NAME=" + std::string(name) + "\n");
        EXPECT_EQ(ResourceWrite(array, {}, rc), "");
        EXPECT_EQ(read(rc), replaced(text, "Label 17  // d", head));
        EXPECT_EQ(objects("D"), array);
    }
    write(rc, "D DIALOG\n  Label named 12\n  Label -1\nEND\n");
    ObjectArray array = objects("D");
    array[1] = replaced(array[1], "NAME=named", "NAME=25");
    array[2] = replaced(array[2], "NAME=-1", "NAME=other");
    EXPECT_EQ(ResourceWrite(array, {}, rc), "");
    EXPECT_EQ(read(rc), "D DIALOG\n  Label 25\n  Label other 101\nEND\n");
}

TEST_F(ResourceGivenTest, NumbersThatAreNamesAreGivenToNoOther) {
    ObjectArray array{};
    array[0] = "NAME=D\nTYPEOF=Dialog\n";
    array[1] = "NAME=a\nTYPEOF=Label\n";
    array[2] = "NAME=101\nTYPEOF=Label\n";
    array[3] = "NAME=0x66\nTYPEOF=Edit\n";
    array[4] = "NAME=103\nTYPEOF=Label\nCAPTION=\"x\"\n";
    array[5] = "NAME=103\nTYPEOF=Label\nCAPTION=\"y\"\n";
    write(rc, "");
    ASSERT_EQ(ResourceWrite(array, {}, rc), "");
    EXPECT_EQ(info("CONTROLS", "D"), "a 104\n101 101\n0x66 102\n103 103\n103 103\n");
    array = objects("D");
    array[4] = replaced(array[4], "NAME=103", "NAME=b");
    ASSERT_EQ(ResourceWrite(array, {}, rc), "");
    EXPECT_EQ(info("CONTROLS", "D"), "a 104\n101 101\n0x66 102\nb 105\n103 103\n");
    EXPECT_EQ(CompileResources({rc}, folder / "out.rcx"), "");
}

TEST_F(ResourceGivenTest, ADialogOfNumbersCompiles) {
    write(rc, "D DIALOG\nLabel 17\nLabel -1\nLabel -1\nLabel\nEND\n");
    ASSERT_EQ(CompileResources({rc}, folder / "out.rcx"), "");
    EXPECT_EQ(ResourceInfo(folder / "out.rcx", "CONTROLS", "D").text, "17 17\n-1 -1\n-1 -1\n");
    WindowTemplate made;
    CompiledResources compiled;
    ASSERT_EQ(compiled.open(read(folder / "out.rcx")), "");
    ASSERT_TRUE(compiled.window("D", made));
    EXPECT_EQ(made.controls[0].number, 17);
    EXPECT_GE(made.controls[1].number, 20'000);
    EXPECT_NE(made.controls[1].number, made.controls[2].number);
    EXPECT_EQ(compiled.symbol("17") + compiled.symbol("-1"), 0) << "a number is no symbol";
}

TEST_F(ResourceGivenTest, ADialogOfNumbersLoadsAndAFaultyOneTellsItsLine) {
    write(rc, "D DIALOG\nLabel 17\nCAPTION=\"seventeen\"\nLabel -1\nLabel -1\nEND\nBad DIALOG\nwhat\nEND\n");
    auto viewBefore = useView(makeHeadlessView());
    const Object window("TestDlg");
    EXPECT_EQ(Load(window, rc, "D"), "");
    EXPECT_EQ(FindControl(window, "17"), Object("TestDlg", 17));
    EXPECT_EQ(GetCaption(Object("TestDlg", 17)).value, "seventeen");
    Unload(window);
    EXPECT_EQ(Load(window, rc, "Bad"),
              "'" + rc + "', line 8: A property, a control or END should stand here.");
    useView(std::move(viewBefore));
}

TEST_F(ResourceGivenTest, NumbersThatCannotBeNamesAreRefused) {
    for (const char* name : {"-", "1a", "99999999999", "1.5", "--1", "a-b", "a b"}) {
        ObjectArray array{};
        array[0] = "NAME=Other\nTYPEOF=Dialog\n";
        array[1] = "NAME=" + std::string(name) + "\nTYPEOF=Label\n";
        EXPECT_EQ(ResourceWrite(array, {}, rc),
                  "The name of an object is not valid: '" + std::string(name) + "'.");
    }
    ObjectArray array{}, menu{};
    array[0] = "NAME=Other\nTYPEOF=Dialog\n";
    menu[0] = "NAME=M\nTYPEOF=Menuitem\n";
    menu[1] = "NAME=12\nTYPEOF=Menuitem\n";
    EXPECT_EQ(ResourceWrite(array, menu, rc), "The name of an object is not valid: '12'.");
    array[0] = "NAME=12\nTYPEOF=Dialog\n";
    EXPECT_EQ(ResourceWrite(array, {}, rc), "The name of the dialog is not valid: '12'.");
    EXPECT_EQ(read(rc), example);
}

TEST_F(ResourceGivenTest, ANumberOfANamelessItemIsNoName) {
    const std::string text = "D DIALOG\nMENU=M\nEND\nM MENU\nMenuitem 5\nPOSITION=1\nEND\n";
    write(rc, text);
    EXPECT_TRUE(objects("M")[1].starts_with("NAME=\n")) << "it is a separator";
    EXPECT_EQ(info("CONTROLS", "D"), "");
    EXPECT_EQ(ResourceWrite(objects("D"), objects("M"), rc), "");
    EXPECT_EQ(read(rc), text);
}

// ---- a byte order mark ----

const std::string mark = "\xef\xbb\xbf";

TEST_F(ResourceGivenTest, AByteOrderMarkIsKeptAndHidesNothing) {
    write(rc, mark + "first BITMAP \"a.bmp\"\nD DIALOG\nEND\n");
    EXPECT_EQ(info("*", "*"), "first\nD\n");
    EXPECT_EQ(info("BITMAP", "first"), "first first BITMAP \"a.bmp\"\n");
    EXPECT_EQ(ResourceRename(rc, "first", "logo"), "");
    EXPECT_EQ(read(rc), mark + "logo BITMAP \"a.bmp\"\nD DIALOG\nEND\n");
    ObjectArray array = objects("D");
    EXPECT_EQ(ResourceWrite(array, {}, rc), "");
    EXPECT_EQ(read(rc), mark + "logo BITMAP \"a.bmp\"\nD DIALOG\nEND\n");
    EXPECT_EQ(ResourceDelete(rc, "logo"), "");
    EXPECT_EQ(read(rc), mark + "D DIALOG\nEND\n");
    EXPECT_EQ(ResourceDelete(rc, "D"), "");
    EXPECT_EQ(read(rc), mark);
    EXPECT_EQ(info("*", "*"), "");
    EXPECT_EQ(ResourceWriteText(rc, mark + "p BITMAP \"b\"\n"), "");
    EXPECT_EQ(read(rc), mark + "p BITMAP \"b\"\n") << "one mark, at the start";
    EXPECT_EQ(ResourceWriteText(rc, mark + "q BITMAP \"b\"\n"), "");
    EXPECT_EQ(read(rc), mark + "p BITMAP \"b\"\nq BITMAP \"b\"\n");
    EXPECT_EQ(info("*", "*"), "p\nq\n");
}

TEST_F(ResourceGivenTest, ADialogInAFileOfAMarkAloneIsRead) {
    write(rc, mark);
    ObjectArray array{};
    array[0] = "NAME=D\nTYPEOF=Dialog\n";
    EXPECT_EQ(ResourceWrite(array, {}, rc), "");
    EXPECT_EQ(read(rc), mark + "D DIALOG\nEND\n");
    EXPECT_EQ(info("DIALOG", "*"), "D DIALOG\n");
}

TEST_F(ResourceGivenTest, AMarkCountsOnlyAtTheStart) {
    write(rc, "a BITMAP \"x\"\n" + mark + "b BITMAP \"x\"\n");
    EXPECT_EQ(info("*", "*"), "a\n");
    EXPECT_NE(CompileResources({rc}, folder / "out.rcx"), "") << "and the compiler tells of it";
}

}  // namespace
}  // namespace tarn::platform
