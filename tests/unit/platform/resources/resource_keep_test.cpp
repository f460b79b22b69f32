// SPDX-License-Identifier: Apache-2.0
//
// What a resource file tells about an object beside its properties (comments, layout, its number) stays with
// that object, whatever is done to the ones around it.
#include "unit/platform/resource_fixture.h"

namespace tarn::platform {
namespace {

const std::string name = "  // the name\n  Label\n    POSITION=1 1 10 10\n    CAPTION=\"Name:\"\n",
                  edtname = "  Edit edtname 11  // typed\n    POSITION=20 1 10 10\n",
                  street = "\n  // the street\n  Label\n    POSITION=1 20 10 10\n    CAPTION=\"Street:\"\n",
                  edtstreet = "  // by post\n  Edit   edtstreet   12\n    POSITION=20 20 10 10\n",
                  town = "  // the town\n  Label\n    POSITION=1 40 10 10\n    CAPTION=\"Town:\"\n",
                  tail = "  // last words\nEND\n// more\n";

class ResourceKeepTest : public ResourceTest {
protected:
    static std::string dialog(const std::vector<std::string>& blocks) {
        std::string text = "// first\nD DIALOG\n";
        for (const std::string& block : blocks) text += block;
        return text + tail;
    }
    // Reads the dialog or menu of `text`, changes it, writes it, and gives the text then.
    template <class Change>
    std::string after(const std::string& text, Change change, bool menu = false) {
        write(rc, text);
        ObjectArray array = objects(menu ? "M" : "D"), own{};
        change(array);
        if (menu) own[0] = "NAME=D\nTYPEOF=Dialog\n";
        EXPECT_EQ(menu ? ResourceWrite(own, array, rc) : ResourceWrite(array, {}, rc), "");
        ObjectArray again = objects(menu ? "M" : "D");
        for (std::size_t i = 0; i < array.size(); ++i) EXPECT_EQ(again[i], array[i]) << i;
        return read(rc);
    }
    static void remove(ObjectArray& array, std::size_t at) {
        for (; at + 1 < array.size(); ++at) array[at] = array[at + 1];
        array.back().clear();
    }
    static void insert(ObjectArray& array, std::size_t at, std::string list) {
        for (std::size_t i = array.size() - 1; i > at; --i) array[i] = array[i - 1];
        array[at] = std::move(list);
    }
    static std::string label(const std::string& named, const std::string& position,
                             const std::string& caption) {
        return "NAME=" + named + "\nTYPEOF=Label\nPOSITION=" + position + "\nCAPTION=\"" + caption +
               "\"\nALIGNMENT=0\nBORDERSTYLE=0\nENABLED=1\nVISIBLE=1\nARRAY=\nHINT=\"\"\n";
    }
    static void set(std::string& list, const std::string& what, const std::string& with) {
        list = replaced(list, what, with);
    }
};

struct Step {
    const char* what;
    void (*change)(ObjectArray& array);
    std::string result;
};

// ---- what was taken out ----

TEST_F(ResourceKeepTest, AnObjectThatComesBackGetsItsBlock) {
    const std::string text = dialog({name, edtname, street, edtstreet, town});
    for (const std::size_t gone : {std::size_t{1}, std::size_t{2}, std::size_t{4}, std::size_t{5}}) {
        write(rc, text);
        const ObjectArray all = objects("D");
        ObjectArray less = all;
        remove(less, gone);
        ResourcePast past;
        EXPECT_EQ(ResourceWrite(less, {}, rc, past), "");
        EXPECT_EQ(past.size(), 1U);
        EXPECT_NE(read(rc), text);
        EXPECT_EQ(ResourceWrite(all, {}, rc, past), "");
        EXPECT_EQ(read(rc), text) << gone;
        EXPECT_EQ(past.size(), 1U) << "nothing went";
    }
}

TEST_F(ResourceKeepTest, WhatTookItsNumberMeanwhileKeepsThat) {
    write(rc, dialog({edtname}));
    const ObjectArray all = objects("D");
    ObjectArray less = all;
    less[1] = "NAME=other\nTYPEOF=Edit\nPOSITION=1 1 2 2\n";
    ResourcePast past;
    ObjectArray none{};
    none[0] = all[0];
    EXPECT_EQ(ResourceWrite(none, {}, rc, past), "");
    write(rc, replaced(read(rc), "D DIALOG\n", "D DIALOG\n  Edit other 11\n    POSITION=1 1 2 2\n"));
    less = objects("D");
    less[2] = all[1];
    EXPECT_EQ(ResourceWrite(less, {}, rc, past), "");
    EXPECT_EQ(read(rc).find("edtname 11"), std::string::npos) << read(rc);
    EXPECT_NE(read(rc).find("edtname"), std::string::npos);
}

TEST_F(ResourceKeepTest, AnotherTypeOfThatNameIsNew) {
    write(rc, dialog({edtname}));
    const ObjectArray all = objects("D");
    ObjectArray none{};
    none[0] = all[0];
    ResourcePast past;
    EXPECT_EQ(ResourceWrite(none, {}, rc, past), "");
    ObjectArray changed = none;
    changed[1] = "NAME=edtname\nTYPEOF=Listbox\nPOSITION=20 1 10 10\n";
    EXPECT_EQ(ResourceWrite(changed, {}, rc, past), "");
    EXPECT_EQ(read(rc).find("// typed"), std::string::npos);
}

TEST_F(ResourceKeepTest, AWriteThatFailsRemembersNothing) {
    write(rc, dialog({edtname}));
    ObjectArray none = objects("D");
    none[1].clear();
    ResourcePast past;
    EXPECT_NE(ResourceWrite(none, {}, "/nowhere/at/all.rc", past), "");
    EXPECT_TRUE(past.empty());
}

// ---- nameless controls ----

TEST_F(ResourceKeepTest, NamelessControlsKeepTheirCommentsWhenOthersComeAndGo) {
    const std::string fresh = "  Label\n    POSITION=9 9 9 9\n    CAPTION=\"New\"\n";
    const Step steps[] = {
        {"nothing", [](ObjectArray&) {}, dialog({name, edtname, street, edtstreet, town})},
        {"the first one goes", [](ObjectArray& a) { remove(a, 1); },
         dialog({edtname, street, edtstreet, town})},
        {"the middle one goes", [](ObjectArray& a) { remove(a, 3); },
         dialog({name, edtname, edtstreet, town})},
        {"the last one goes", [](ObjectArray& a) { remove(a, 5); },
         dialog({name, edtname, street, edtstreet})},
        {"two of them go",
         [](ObjectArray& a) {
             remove(a, 3);
             remove(a, 1);
         },
         dialog({edtname, edtstreet, town})},
        {"all but the last go",
         [](ObjectArray& a) {
             for (int i = 0; i < 4; ++i) remove(a, 1);
         },
         dialog({town})},
        {"one comes first", [](ObjectArray& a) { insert(a, 1, label("", "9 9 9 9", "New")); },
         dialog({fresh, name, edtname, street, edtstreet, town})},
        {"one comes between", [](ObjectArray& a) { insert(a, 3, label("", "9 9 9 9", "New")); },
         dialog({name, edtname, fresh, street, edtstreet, town})},
        {"one comes and another goes",
         [](ObjectArray& a) {
             remove(a, 5);
             insert(a, 1, label("", "9 9 9 9", "New"));
         },
         dialog({fresh, name, edtname, street, edtstreet})},
        {"the caption of one changes", [](ObjectArray& a) { set(a[3], "Street", "Road"); },
         dialog({name, edtname, replaced(street, "Street", "Road"), edtstreet, town})},
        {"the caption and the place of one change",
         [](ObjectArray& a) {
             set(a[3], "Street", "Road");
             set(a[3], "1 20 10 10", "2 21 10 10");
         },
         dialog({name, edtname, replaced(replaced(street, "Street", "Road"), "1 20 10 10", "2 21 10 10"),
                 edtstreet, town})},
        {"one changes while the one before it goes",
         [](ObjectArray& a) {
             set(a[3], "Street", "Road");
             remove(a, 1);
         },
         dialog({edtname, replaced(street, "Street", "Road"), edtstreet, town})},
        {"they change places", [](ObjectArray& a) { std::swap(a[1], a[5]); },
         dialog({town, edtname, street, edtstreet, name})},
        {"the type of one changes", [](ObjectArray& a) { set(a[3], "=Label", "=Groupbox"); },
         dialog({name, edtname,
                 replaced(street, "Label", "Groupbox") + "    ALIGNMENT=0\n    BORDERSTYLE=0\n", edtstreet,
                 town})},
        {"one gets a name", [](ObjectArray& a) { set(a[3], "NAME=\n", "NAME=lblstreet\n"); },
         dialog({name, edtname, replaced(street, "Label\n", "Label lblstreet 101\n"), edtstreet, town})},
        {"one gets a name and a new caption",
         [](ObjectArray& a) {
             set(a[3], "NAME=\n", "NAME=lblstreet\n");
             set(a[3], "Street:", "Road:");
         },
         dialog({name, edtname,
                 replaced(replaced(street, "Label\n", "Label lblstreet 101\n"), "Street:", "Road:"),
                 edtstreet, town})},
        {"a named one loses its name", [](ObjectArray& a) { set(a[4], "NAME=edtstreet", "NAME="); },
         dialog({name, edtname, street, replaced(edtstreet, "Edit   edtstreet   12", "Edit"), town})},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(step.what);
        const std::string text = dialog({name, edtname, street, edtstreet, town});
        write(rc, text);
        ObjectArray array = objects("D");
        step.change(array);
        EXPECT_EQ(ResourceWrite(array, {}, rc), "");
        EXPECT_EQ(read(rc), step.result);
        EXPECT_EQ(count(objects("D")), count(array));
    }
}

TEST_F(ResourceKeepTest, NamelessControlsOfEqualContentKeepTheirNeighbours) {
    std::string text = "D DIALOG\n";
    for (const char* number : {"1", "2", "3", "4"})
        text += std::string("  // line ") + number + "\n  Shape\n    SHAPE=3\n  Edit edit" + number + " 1" +
                number + "\n";
    text += "END\n";
    for (std::size_t gone = 0; gone < 4; ++gone) {
        write(rc, text);
        ObjectArray array = objects("D");
        remove(array, 1 + gone * 2);
        ASSERT_EQ(ResourceWrite(array, {}, rc), "");
        const std::string lost =
            "  // line " + std::string(1, static_cast<char>('1' + gone)) + "\n  Shape\n    SHAPE=3\n";
        EXPECT_EQ(read(rc), replaced(text, lost, ""));
    }
}

TEST_F(ResourceKeepTest, OfEqualControlsTheOneThatChangesKeepsItsComment) {
    for (const char* head : {"Label", "Label twin"}) {
        std::vector<std::string> blocks;
        for (const char* comment : {"// one", "// two", "// three"})
            blocks.push_back(std::string("  ") + comment + "\n  " + head +
                             "\n    CAPTION=\"x\"\n    HINT=\"y\"\n");
        for (std::size_t i = 0; i < blocks.size(); ++i) {
            SCOPED_TRACE(head + std::to_string(i));
            std::vector<std::string> changed = blocks;
            changed[i] = replaced(changed[i], "\"y\"", "\"z\"");
            write(rc, dialog(blocks));
            ObjectArray array = objects("D");
            array[i + 1] = replaced(array[i + 1], "HINT=\"y\"", "HINT=\"z\"");
            EXPECT_EQ(ResourceWrite(array, {}, rc), "");
            EXPECT_EQ(read(rc), dialog(changed));
        }
    }
}

TEST_F(ResourceKeepTest, WhatGetsItsFirstTextOrLosesItsLastKeepsItsComment) {
    const std::string with = "  // mine\n  Label\n    POSITION=1 1 9 9\n    CAPTION=\"x\"\n",
                      without = replaced(with, "\"x\"", "\"\"");
    EXPECT_EQ(after(dialog({with}), [](ObjectArray& a) { set(a[1], "\"x\"", "\"\""); }), dialog({without}));
    EXPECT_EQ(after(dialog({without}), [](ObjectArray& a) { set(a[1], "CAPTION=\"\"", "CAPTION=\"x\""); }),
              dialog({with}));
    const std::string item = "  // mine\n  Menuitem\n    POSITION=2\n    PICTURE=\"a.bmp\"\n";
    const std::string menu = "D DIALOG\nEND\nM MENU\n" + item + "END\n";
    EXPECT_EQ(after(
                  menu, [](ObjectArray& a) { set(a[1], "\"a.bmp\"", "\"\""); }, true),
              replaced(menu, "a.bmp", ""));
}

// ---- menus ----

TEST_F(ResourceKeepTest, SeparatorsKeepTheirComments) {
    const std::string file = "  Menuitem\n    POSITION=1\n    CAPTION=\"&File\"\n",
                      open = "  Menuitem file_open 31\n    POSITION=2\n    CAPTION=\"&Open\"\n",
                      first = "  // files above\n  Menuitem\n    POSITION=2\n",
                      print = "  Menuitem file_print 32\n    POSITION=2\n    CAPTION=\"&Print\"\n",
                      second = "  // then the way out\n  Menuitem\n    POSITION=2\n",
                      leave = "  Menuitem file_exit 33\n    POSITION=2\n    CAPTION=\"E&xit\"\n";
    const auto menu = [&](const std::vector<std::string>& items) {
        std::string text = "D DIALOG\nEND\nM MENU\n";
        for (const std::string& item : items) text += item;
        return text + "END\n";
    };
    const std::string text = menu({file, open, first, print, second, leave});
    EXPECT_EQ(after(
                  text, [](ObjectArray& a) { remove(a, 3); }, true),
              menu({file, open, print, second, leave}));
    EXPECT_EQ(after(
                  text, [](ObjectArray& a) { remove(a, 5); }, true),
              menu({file, open, first, print, leave}));
    EXPECT_EQ(after(
                  text, [](ObjectArray& a) { insert(a, 1, a[3]); }, true),
              menu({"  Menuitem\n    POSITION=2\n", file, open, first, print, second, leave}));
}

// ---- names, types and numbers ----

TEST_F(ResourceKeepTest, AControlOfAnotherTypeKeepsItsCommentAndItsNumber) {
    const std::string text = dialog({name, edtname, edtstreet});
    write(rc, text);
    ObjectArray array = objects("D");
    array[3] = replaced(array[3], "TYPEOF=Edit", "TYPEOF=Combobox");
    ASSERT_EQ(ResourceWrite(array, {}, rc), "");
    const std::string result = read(rc);
    EXPECT_NE(result.find("  // by post\n  Combobox   edtstreet   12\n    POSITION=20 20 10 10\n"),
              std::string::npos)
        << result;
    EXPECT_TRUE(objects("D")[3].starts_with("NAME=edtstreet\nTYPEOF=Combobox\n"));
}

TEST_F(ResourceKeepTest, AValueReadsTheSameUnderAnotherTypeOfItsControl) {
    write(rc, "D DIALOG\n  Bitmapbutton b 5\n    PICTURE=\"C:\\new\\\\x\"\nEND\n");
    ObjectArray array = objects("D");
    EXPECT_NE(array[1].find("PICTURE=\"C:\\new\\x\"\n"), std::string::npos) << array[1];
    array[1] = "NAME=b\nTYPEOF=Label\nPICTURE=\"C:\\dew\\x\"\nCAPTION=\"C:\\new\\x\"\n";
    ASSERT_EQ(ResourceWrite(array, {}, rc), "");
    EXPECT_NE(objects("D")[1].find("PICTURE=C:\\dew\\x\n"), std::string::npos) << objects("D")[1];
}

TEST_F(ResourceKeepTest, TwoControlsOfOneNameEachKeepTheirs) {
    const std::string one = "  // one\n  Label a 21\n    POSITION=1 1 1 1\n    CAPTION=\"One\"\n",
                      two = "  // two\n  Label a 22\n    POSITION=2 2 2 2\n    CAPTION=\"Two\"\n",
                      edit = "  // three\n  Edit a 23\n    POSITION=2 2 2 2\n";
    const std::string text = dialog({one, two, edit});
    EXPECT_EQ(after(text, [](ObjectArray&) {}), text);
    EXPECT_EQ(after(text, [](ObjectArray& a) { remove(a, 1); }), dialog({two, edit}));
    EXPECT_EQ(after(text, [](ObjectArray& a) { std::swap(a[1], a[3]); }), dialog({edit, two, one}));
    EXPECT_EQ(after(text,
                    [](ObjectArray& a) {
                        remove(a, 1);
                        set(a[1], "Two", "2");
                    }),
              dialog({replaced(two, "Two", "2"), edit}));
    EXPECT_EQ(after(text, [](ObjectArray& a) { set(a[2], "NAME=a", "NAME=b"); }),
              dialog({one, replaced(two, "Label a", "Label b"), edit}));
}

TEST_F(ResourceKeepTest, AControlThatIsRenamedKeepsItsNumberHoweverItHasIt) {
    const std::string text = "#define second 777\n#define IDOTHER 778\nD DIALOG\n  Label first 11\n"
                             "  Label second\n  Label third IDOTHER\n  Pushbutton IDOK\nEND\n";
    const auto renamed = [&](std::size_t element, const std::string& from, const std::string& to) {
        return after(text,
                     [&](ObjectArray& a) { set(a[element], "NAME=" + from + "\n", "NAME=" + to + "\n"); });
    };
    EXPECT_EQ(renamed(1, "first", "x"), replaced(text, "Label first 11", "Label x 11"));
    EXPECT_EQ(renamed(2, "second", "x"), replaced(text, "Label second", "Label x 777"));
    EXPECT_EQ(renamed(3, "third", "x"), replaced(text, "Label third IDOTHER", "Label x IDOTHER"));
    EXPECT_EQ(renamed(1, "first", "IDCANCEL"), replaced(text, "Label first 11", "Label IDCANCEL"))
        << "the number of a common identifier is its own";
    EXPECT_EQ(renamed(4, "IDOK", "x"), replaced(text, "Pushbutton IDOK", "Pushbutton x 779"))
        << "and stays with it";
    EXPECT_EQ(renamed(3, "third", "third_1"), replaced(text, "Label third IDOTHER", "Label third_1 IDOTHER"));
}

TEST_F(ResourceKeepTest, ADefinedNumberIsNotUsedTwiceWhenItsNameGoesToAnother) {
    const std::string text = "#define a 777\nD DIALOG\n  Label a\n    CAPTION=\"A\"\nEND\n";
    const std::string result = after(text, [](ObjectArray& array) {
        array[2] = label("a", "1 1 1 1", "new");
        set(array[1], "NAME=a\n", "NAME=b\n");
    });
    EXPECT_EQ(ResourceInfo(rc, "CONTROLS", "D").text.find("777"),
              ResourceInfo(rc, "CONTROLS", "D").text.rfind("777"))
        << result;
    EXPECT_EQ(CompileResources({rc}, folder / "out.rcx"), "");
}

TEST_F(ResourceKeepTest, ANewControlInThePlaceOfARemovedOneHasNothingOfIt) {
    const std::string text = dialog({name, edtname,
                                     "  // the old one\n  Label old 12\n    POSITION=1 40 10 "
                                     "10\n    CAPTION=\"Old\"\n"});
    EXPECT_EQ(after(text, [](ObjectArray& a) { a[3] = label("new", "5 5 5 5", "New"); }),
              dialog({name, edtname, "  Label new 101\n    POSITION=5 5 5 5\n    CAPTION=\"New\"\n"}));
}

TEST_F(ResourceKeepTest, ARenamedControlIsKnownByItsPlaceOrItsText) {
    const std::string block =
        "  // a comment\n  Label old 12\n    POSITION=1 40 10 10\n    CAPTION=\"Old\"\n";
    const std::string text = dialog({name, block, edtname});
    EXPECT_EQ(after(text,
                    [](ObjectArray& a) {
                        set(a[2], "NAME=old", "NAME=new");
                        set(a[2], "\"Old\"", "\"New\"");
                    }),
              dialog({name, replaced(replaced(block, "old", "new"), "Old", "New"), edtname}));
    EXPECT_EQ(after(text,
                    [](ObjectArray& a) {
                        set(a[2], "NAME=old", "NAME=new");
                        set(a[2], "1 40 10 10", "2 41 10 10");
                    }),
              dialog({name, replaced(replaced(block, "old", "new"), "1 40 10 10", "2 41 10 10"), edtname}));
}

TEST_F(ResourceKeepTest, ManyObjectsAreMatchedInTime) {
    std::string text = "D DIALOG\n";
    for (int i = 0; i < 255; ++i)
        text +=
            "  // comment " + std::to_string(i) + "\n  Label\n    CAPTION=\"" + std::to_string(i) + "\"\n";
    text += "END\n";
    const std::string result = after(text, [](ObjectArray& a) {
        for (int i = 0; i < 100; ++i) remove(a, 2 + static_cast<std::size_t>(i));
    });
    for (int i = 0; i < 255; ++i) {
        const std::string number = std::to_string(i);
        const bool stays = i >= 200 || i % 2 == 0;
        EXPECT_EQ(result.find("// comment " + number + "\n  Label\n    CAPTION=\"" + number + "\"\n") !=
                      std::string::npos,
                  stays)
            << i;
    }
}

}  // namespace
}  // namespace tarn::platform
