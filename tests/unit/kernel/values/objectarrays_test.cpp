// SPDX-License-Identifier: Apache-2.0
//
// Objects of windows in arrays of the kernel, and the sizes of the buffers of answers.
#include "kernel/values/objectarrays.h"

#include "kernel/values/arrays.h"
#include "kernel/values/owned.h"
#include "kernel/values/strings.h"
#include "os/files.h"
#include "platform/resources/properties.h"
#include "support/steerable.h"
#include "support/tempfolder.h"
#include "unit/kernel/values_fixture.h"

#include <algorithm>
#include <cstring>

using namespace tarn;

namespace {

constexpr std::int32_t none = NO_DIMENSION;

class ObjectArrays : public Values {
protected:
    TempFolder folder;
    std::string rc = folder / "a.rc";

    static ArrayValue strings(std::int32_t lower, std::int32_t upper,
                              std::int32_t capacity = RESOURCE_OBJECT_SIZE) {
        const String like(capacity);
        ArrayValue a;
        ArrayInit(a.get(), KindString, lower, upper, like.get());
        return a;
    }
    static void put(ArrayDescriptor* a, std::int32_t i, std::string_view text) {
        const String s(text);
        ArrayPut(a, i, s.get(), KindString);
    }
    static std::string at(const ArrayDescriptor* a, std::int32_t i) {
        String s;
        ArrayGet(a, i, s.get(), KindString);
        return std::string(s.view());
    }
    static std::string write(const ArrayDescriptor* dialog, const ArrayDescriptor* menu,
                             const std::string& file) {
        return ResourceWrite(dialog, 256, 1024, menu, 256, 1024, file);
    }
    static void save(const std::string& file, std::string_view text) {
        ASSERT_TRUE(os::saveFile(file, text, os::Durability::Unsynced).ok());
    }
    static std::string load(const std::string& file) {
        std::string bytes;
        os::readFile(file, bytes);
        return bytes;
    }
    static std::string label(std::size_t size) {
        const std::string head = "NAME=a\nTYPEOF=Label\nPOSITION=0 0 0 0\nCAPTION=\"",
                          tail = "\"\nALIGNMENT=0\nBORDERSTYLE=0\nENABLED=1\nVISIBLE=1\nARRAY=\nHINT=\"\"\n";
        return head + std::string(size - head.size() - tail.size(), 'x') + tail;
    }
};

constexpr const char* readRefusal = "Buffer parameter must be 1D string array [0..MAX_CONTROLS]";
constexpr const char* dialogRefusal = "DlgBuffer parameter must be 1D string array [0..MAX_CONTROLS]";
constexpr const char* menuRefusal = "MenuBuffer parameter must be 1D string array [0..MAX_CONTROLS]";

TEST_F(ObjectArrays, GoThereAndBack) {
    ArrayValue dialog = strings(0, MAX_CONTROLS), menu = strings(0, MAX_CONTROLS);
    put(dialog.get(), 0, "NAME=D\nTYPEOF=Dialog\nMENU=M\n");
    put(dialog.get(), 1, "NAME=x\nTYPEOF=Edit\n");
    put(menu.get(), 0, "NAME=M\nTYPEOF=Menuitem\n");
    put(menu.get(), 1, "NAME=y\nTYPEOF=Menuitem\nCAPTION=\"&Y\"\n");
    ASSERT_EQ(write(dialog.get(), menu.get(), rc), "");
    EXPECT_EQ(load(rc),
              "D DIALOG\n  MENU=M\n  Edit x 101\nEND\n\nM MENU\n  Menuitem y 102\n    CAPTION=\"&Y\"\nEND\n");
    ObjectArray same;
    ASSERT_EQ(ResourceRead(rc, "D", same), "");
    put(dialog.get(), 3, "left from before");
    EXPECT_EQ(ResourceRead(rc, "D", dialog.get(), 1, 1), "") << "what is said of the array is not looked at";
    for (std::int32_t i = 0; i <= MAX_CONTROLS; ++i)
        ASSERT_EQ(at(dialog.get(), i), same[static_cast<std::size_t>(i)]) << i;
    EXPECT_EQ(at(dialog.get(), 3), "");
}

TEST_F(ObjectArrays, OfAnotherShapeAreRefusedBeforeAFileIsTouched) {
    ArrayValue good = strings(0, MAX_CONTROLS), dynamic, numbers, square, untyped;
    put(good.get(), 0, "NAME=D\nTYPEOF=Dialog\n");
    ArrayInitDynamic(dynamic.get(), KindString, String(1024).get());
    ArrayInit(numbers.get(), KindInteger, 0, MAX_CONTROLS);
    ArrayInit(square.get(), KindString, 0, MAX_CONTROLS, 0, 0, none, none, String(8).get());
    ArrayInitDynamic(untyped.get(), KindNone, nullptr);
    ArrayValue shapes[] = {strings(0, 254), strings(0, 256), strings(1, 255), strings(1, 256),
                           strings(-1, 254)};
    const String text("no array");
    std::vector<const ArrayDescriptor*> wrong = {
        nullptr,      dynamic.get(), numbers.get(),
        square.get(), untyped.get(), reinterpret_cast<const ArrayDescriptor*>(text.get())};
    for (const ArrayValue& shape : shapes) wrong.push_back(shape.get());
    os::SteeredFiles disk;
    disk.put("/home/user/a.rc", "D DIALOG\nEND\n");
    os::FileSystem* const before = os::useFiles(&disk);
    disk.clearLog();
    for (const ArrayDescriptor* a : wrong) {
        EXPECT_EQ(ResourceRead("/home/user/a.rc", "D", const_cast<ArrayDescriptor*>(a), 256, 1024),
                  readRefusal);
        EXPECT_EQ(write(a, good.get(), "/home/user/a.rc"), dialogRefusal);
        EXPECT_EQ(write(good.get(), a, "/home/user/a.rc"), menuRefusal);
    }
    EXPECT_EQ(write(wrong[0], wrong[0], "/home/user/a.rc"), dialogRefusal) << "the first one is told";
    EXPECT_EQ(disk.calls(), 0);
    EXPECT_TRUE(disk.log().empty());
    os::useFiles(before);
}

TEST_F(ObjectArrays, WithBoundsSetAtRunTimeAreArraysToo) {
    save(rc, "D DIALOG\nEND\n");
    ArrayValue a;
    ArrayInitDynamic(a.get(), KindString, String(1024).get());
    ArrayRedim(a.get(), 0, MAX_CONTROLS, false);
    EXPECT_EQ(ResourceRead(rc, "D", a.get(), 256, 1024), "");
    EXPECT_EQ(at(a.get(), 0).substr(0, 7), "NAME=D\n");
}

TEST_F(ObjectArrays, ElementsOfExactlyTheirCapacityComeBack) {
    ArrayValue a = strings(0, MAX_CONTROLS), none_ = strings(0, MAX_CONTROLS);
    put(a.get(), 0, "NAME=D\nTYPEOF=Dialog\n");
    const std::string full = label(RESOURCE_OBJECT_SIZE);
    put(a.get(), 1, full);
    ASSERT_EQ(write(a.get(), none_.get(), rc), "");
    ASSERT_EQ(ResourceRead(rc, "D", a.get(), 256, 1024), "");
    EXPECT_EQ(at(a.get(), 1), full);
    EXPECT_EQ(at(a.get(), 1).size(), 1024U);
}

TEST_F(ObjectArrays, FullElementsOfFewPropertiesComeBack) {
    const struct {
        const char *type, *before, *after;
    } cases[] = {
        {"Edit", "TEXT=\"", "\"\n"}, {"Label", "POSITION=1 2 3 4\nHINT=\"h\"\nCAPTION=\"", "\"\n"},
        {"Label", "CAPTION=", "\n"}, {"Pushbutton", "TABSTOP=0\nWEIGHT=12\nCAPTION=", "\nHINT=h\n"},
        {"Image", "PICTURE=", "\n"}, {"Edit", "ODD=\"", "\"\n"},
    };
    for (const auto& c : cases) {
        ArrayValue a = strings(0, MAX_CONTROLS), none_ = strings(0, MAX_CONTROLS);
        put(a.get(), 0, "NAME=D\nTYPEOF=Dialog\n");
        const std::string before = "NAME=a\nTYPEOF=" + std::string(c.type) + "\n" + c.before;
        const std::string given =
            before + std::string(RESOURCE_OBJECT_SIZE - before.size() - std::strlen(c.after), 'x') + c.after;
        put(a.get(), 1, given);
        ASSERT_EQ(write(a.get(), none_.get(), rc), "");
        const std::string file = load(rc);
        ASSERT_EQ(ResourceRead(rc, "D", a.get(), 256, 1024), "") << c.type << " " << c.before;
        const std::string read = at(a.get(), 1);
        EXPECT_LE(read.size(), 1024U);
        EXPECT_TRUE(read.starts_with("NAME=a\nTYPEOF=")) << read;
        const auto properties = [](const std::string& list) {
            auto all = platform::parsePropertyList(list).properties;
            std::erase_if(all, [](const auto& property) { return property.first == "POSITION"; });
            std::sort(all.begin(), all.end());
            return all;
        };
        const auto came = properties(read);
        for (const auto& property : properties(given))
            EXPECT_TRUE(std::find(came.begin(), came.end(), property) != came.end())
                << c.type << " " << property.first;
        ASSERT_EQ(write(a.get(), none_.get(), rc), "");
        EXPECT_EQ(load(rc), file) << "what was left out stays as it was";
    }
}

TEST_F(ObjectArrays, QuotesThatMeanSomethingStay) {
    ArrayValue a = strings(0, MAX_CONTROLS, 60), none_ = strings(0, MAX_CONTROLS);
    save(rc, "D DIALOG\n Label a 1\n  CAPTION=\"\\\"quoted twice, in a long text\\\"\"\nEND\n");
    EXPECT_NE(ResourceRead(rc, "D", a.get(), 256, 1024), "");
    EXPECT_EQ(at(a.get(), 1), "");
}

TEST_F(ObjectArrays, AnObjectThatIsTooLongIsAnErrorAndNotCut) {
    ArrayValue a = strings(0, MAX_CONTROLS), wide = strings(0, MAX_CONTROLS, UNBOUNDED),
               none_ = strings(0, MAX_CONTROLS);
    put(wide.get(), 0, "NAME=D\nTYPEOF=Dialog\n");
    put(wide.get(), 1, "NAME=a\nTYPEOF=Label\nCAPTION=" + std::string(RESOURCE_OBJECT_SIZE - 28, 'x') + "\n");
    ASSERT_EQ(write(wide.get(), none_.get(), rc), "");
    put(a.get(), 2, "old");
    EXPECT_EQ(ResourceRead(rc, "D", a.get(), 256, 1024),
              "An object of 'D' in '" + rc + "' is too long for its element.");
    for (std::int32_t i = 0; i <= MAX_CONTROLS; ++i) ASSERT_EQ(at(a.get(), i), "") << i;
    EXPECT_EQ(ResourceRead(rc, "D", wide.get(), 256, 1024), "");
    EXPECT_EQ(at(wide.get(), 1).size(), 1105U) << "all properties of a label";
}

TEST_F(ObjectArrays, ADialogThatIsNotThereGivesAnErrorAndAnEmptyArray) {
    ArrayValue a = strings(0, MAX_CONTROLS);
    put(a.get(), 0, "old");
    EXPECT_EQ(ResourceRead(rc, "D", a.get(), 256, 1024), "'D' was not found in '" + rc + "'.");
    EXPECT_EQ(at(a.get(), 0), "");
}

TEST_F(ObjectArrays, ATextEndsBeforeItsFirstNul) {
    ArrayValue a = strings(0, MAX_CONTROLS), none_ = strings(0, MAX_CONTROLS);
    put(a.get(), 0, std::string_view("NAME=D\nTYPEOF=Dialog\n\0CAPTION=\"x\"\n", 34));
    ASSERT_EQ(write(a.get(), none_.get(), rc), "");
    EXPECT_EQ(load(rc), "D DIALOG\nEND\n");
}

TEST_F(ObjectArrays, OfWideCharactersAreWrittenAByteEach) {
    struct Width {
        Width() { CharacterWidth = 2; }
        ~Width() { CharacterWidth = 1; }
    } width;
    ArrayValue a = strings(0, MAX_CONTROLS), none_ = strings(0, MAX_CONTROLS);
    put(a.get(), 0, "NAME=D\nTYPEOF=Dialog\nCAPTION=\"\xe4\"\n");
    ASSERT_EQ(write(a.get(), none_.get(), rc), "");
    EXPECT_EQ(load(rc), "D DIALOG\n  CAPTION=\"\xe4\"\nEND\n");
    ASSERT_EQ(ResourceRead(rc, "D", a.get(), 256, 1024), "");
    EXPECT_EQ(at(a.get(), 0).substr(0, 8), std::string("N\0A\0M\0E\0", 8));
}

// ---- the buffers of answers ----

TEST_F(ObjectArrays, AListHas65535CharactersAtMost) {
    std::string text;
    for (int i = 0; i < 4095; ++i) text += "name_of_15_byte INCFILE \"x\"\n";
    save(rc, text + "name_of_14_byt INCFILE \"x\"\n");
    const ResourceText full = ResourceInfo(rc, "*", "*");
    EXPECT_EQ(full.error, "");
    EXPECT_EQ(full.text.size(), 65535U);
    save(rc, text + "name_of_15_byte INCFILE \"x\"\n");
    const ResourceText over = ResourceInfo(rc, "*", "*");
    EXPECT_EQ(over.error, "The list of '" + rc + "' is longer than 65535 characters.");
    EXPECT_EQ(over.text.size(), 65520U) << "whole lines";
}

TEST_F(ObjectArrays, AnErrorHas1024CharactersAtMost) {
    const std::string name(2000, 'n');
    ObjectArray objects;
    EXPECT_EQ(ResourceRead(rc, name, objects), ("'" + name).substr(0, 1024));
    EXPECT_EQ(ResourceDelete(rc, name).size(), 1024U);
    EXPECT_EQ(ResourceRename(rc, name, "x").size(), 1024U);
    save(rc, "D DIALOG\nEND\n");
    EXPECT_EQ(ResourceRename(rc, "D", name + " ").size(), 1024U);
    EXPECT_EQ(CutResourceError(std::string(1024, 'e')).size(), 1024U);
}

}  // namespace
