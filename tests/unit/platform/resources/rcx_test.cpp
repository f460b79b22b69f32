// SPDX-License-Identifier: Apache-2.0
#include "platform/resources/rcx.h"

#include "os/files.h"
#include "platform/resources/resource.h"
#include "platform/windowing.h"
#include "support/steerable.h"
#include "support/tempfolder.h"

#include <gtest/gtest.h>

namespace tarn::platform {
namespace {

class CompileTest : public ::testing::Test {
protected:
    TempFolder folder;
    std::string rcx = folder / "out.rcx";

    void TearDown() override { SetApplicationResources(""); }
    std::string write(const std::string& name, std::string_view bytes) {
        EXPECT_TRUE(os::saveFile(folder / name, bytes, os::Durability::Unsynced).ok());
        return folder / name;
    }
    std::string read(const std::string& file) {
        std::string bytes;
        os::readFile(file, bytes);
        return bytes;
    }
    std::string compile(const std::string& text) { return CompileResources({write("a.rc", text)}, rcx); }
    std::string errorAt(int line, int number, const std::string& text) {
        return (folder / "a.rc") + "(" + std::to_string(line) + ") : error " + std::to_string(number) + " " +
               text + "\n";
    }
};

TEST_F(CompileTest, TellsOfTheCompiledFileWhatItTellsOfTheText) {
    write("logo.bmp", "picture bytes");
    const std::string text =
        "#define two 2\nlogo BITMAP \"logo.bmp\"\ninc INCFILE \"a\\\\b.txt\"\n"
        "Main DIALOG\nMENU=M\nLabel one 1\nLabel two\nEND\nM MENU\nMenuitem File_Open 3\nEND\n"
        "V VERSIONINFO\nBEGIN\nEND\nE EDITWINDOW\nEND\n";
    ASSERT_EQ(compile(text), "");
    const std::string rc = folder / "a.rc";
    const std::pair<const char*, const char*> forms[] = {
        {"*", "*"},         {"DIALOG", "*"},      {"MENU", "*"},        {"BITMAP", "*"},
        {"INCFILE", "inc"}, {"VERSIONINFO", "v"}, {"VERSIONINFO", "*"}, {"DIALOG", "main"},
        {"DIALOG", "none"}, {"Controls", "MAIN"}, {"CONTROLS", "none"}};
    for (const auto& [kind, name] : forms) {
        EXPECT_EQ(ResourceInfo(rcx, kind, name).text, ResourceInfo(rc, kind, name).text)
            << kind << " " << name;
        EXPECT_EQ(ResourceInfo(rcx, kind, name).error, "");
    }
    EXPECT_EQ(ResourceInfo(rcx, "Controls", "Main").text, "one 1\ntwo 2\nFile_Open 3\n");
}

TEST_F(CompileTest, CarriesPicturesAndSymbols) {
    write("logo.bmp", "BM12");
    write("own.png", "PNG");
    ASSERT_EQ(
        compile(
            "#define A 7\n#define NEG -5\nlogo BITMAP \"logo.bmp\"\nD DIALOG\nLabel x 41\nLabel IDOK\nEND\n"),
        "");
    SetApplicationResources(rcx);
    EXPECT_EQ(PictureBytes("LOGO").value, "BM12");
    EXPECT_EQ(PictureBytes("own.png").value, "PNG") << "files beside the resources";
    EXPECT_EQ(PictureBytes(folder / "own.png").value, "PNG");
    EXPECT_EQ(PictureBytes("none.png").code, BitmapInvalid);
    EXPECT_EQ(PictureBytes("").code, BitmapInvalid);
    EXPECT_EQ(ResourceValue("a"), 7);
    EXPECT_EQ(ResourceValue("NEG"), -5);
    EXPECT_EQ(ResourceValue("X"), 41);
    EXPECT_EQ(ResourceValue("IDCANCEL"), 2);
    EXPECT_EQ(ResourceValue("none"), 0);
}

TEST_F(CompileTest, JoinsFilesAndFindsTheMenuOfAnother) {
    const std::string a = write("a.rc", "D DIALOG\nMENU=m\nEND\n"),
                      b = write("b.rc", "M MENU\nMenuitem x 5\nEND\n");
    EXPECT_EQ(CompileResources({a, b}, rcx), "");
    EXPECT_EQ(ResourceInfo(rcx, "CONTROLS", "D").text, "x 5\n");
    EXPECT_EQ(CompileResources({a}, rcx), a + "(1) : error 722 The menu 'm' was not found.\n");
    const std::string c = write("c.rc", "\nd DIALOG\nEND\n");
    EXPECT_EQ(CompileResources({a, b, c}, rcx), c + "(2) : error 725 'd' is already a name.\n");
}

TEST_F(CompileTest, ReportsEveryFaultWithItsLine) {
    EXPECT_EQ(compile("D DIALOG\nLabel a 1\nLabel b 1\nEND\n"),
              errorAt(3, 723, "The number 1 is already used in this window."));
    EXPECT_EQ(compile("D DIALOG\nLabel a -1\nEND\n"),
              errorAt(2, 723, "The number of a control must be positive."));
    EXPECT_EQ(compile("D DIALOG\nLabel a NOSUCH\nEND\n"),
              errorAt(2, 723, "'NOSUCH' is no number and no symbol."));
    EXPECT_EQ(compile("D DIALOG\nLabel a\nCOLOR=1\nEND\n"),
              errorAt(3, 725, "A Label has no property COLOR."));
    EXPECT_EQ(compile("D DIALOG\nPOSITION=1 2 3\nEND\n"),
              errorAt(2, 725, "POSITION should be four numbers."));
    EXPECT_EQ(compile("D DIALOG\nLabel a\nENABLED=maybe\nEND\n"),
              errorAt(3, 725, "ENABLED should be a number."));
    EXPECT_EQ(compile("M MENU\nMenuitem\nTEXT=\"\"\nEND\nD DIALOG\nMENU=M\nEND\n"),
              errorAt(3, 726, "A Menuitem has no property TEXT."));
    EXPECT_EQ(compile("what is this\n\nor this\n"), errorAt(1, 725, "This is not a resource statement.") +
                                                        errorAt(3, 725, "This is not a resource statement."));
    EXPECT_EQ(compile("D DIALOG\n"), errorAt(1, 725, "The END of 'D' is missing."));
    EXPECT_EQ(compile("p BITMAP \"none.bmp\"\n"),
              errorAt(1, 710,
                      "The picture 'none.bmp' cannot be read. " +
                          std::string(os::describe(os::FileError::NotFound))));
    EXPECT_EQ(CompileResources({folder / "none.rc"}, rcx).substr(0, (folder / "none.rc").size() + 15),
              (folder / "none.rc") + "(1) : error 704");
    EXPECT_FALSE(os::infoOf(rcx).exists) << "nothing is written when there is an error";
}

TEST_F(CompileTest, AWindowMayHaveThePropertiesOfTheTypeItHadBefore) {
    EXPECT_EQ(compile("D DIALOG\nFLAGS=0\nMAXLENGTH=0\nEND\n"), "");
    EXPECT_EQ(compile("D DIALOG\nTEXT=\"\"\nEND\n"), errorAt(2, 725, "A Dialog has no property TEXT."));
}

TEST_F(CompileTest, ARangeOfNothingIsTheUsualOne) {
    ASSERT_EQ(compile("D DIALOG\nScrollbar a\nMINIMUM=0\nMAXIMUM=0\nScrollbar b\nMAXIMUM=0\nMINIMUM=-5\n"
                      "Scrollbar c\nMAXIMUM=7\nEND\n"),
              "");
    CompiledResources resources;
    ASSERT_EQ(resources.open(read(rcx)), "");
    WindowTemplate window;
    ASSERT_TRUE(resources.window("D", window));
    const char* const maximum[] = {"100", "0", "7"};
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_EQ(valueOf(window.controls[i].properties, Type::Scrollbar, "MAXIMUM"), maximum[i]);
}

TEST_F(CompileTest, ResolvesPlaceholdersOfPaths) {
    write("p.bmp", "x");
    const std::string rc = write("a.rc", "p BITMAP \"<RESOURCEDIR>\\\\p.bmp\"\n");
    EXPECT_NE(CompileResources({rc}, rcx), "");
    EXPECT_EQ(CompileResources({rc}, rcx, {{"<resourcedir>", folder.path()}}), "");
    EXPECT_EQ(ResourceInfo(rcx, "BITMAP", "p").text, "p p BITMAP \"<RESOURCEDIR>\\\\p.bmp\"\n");
}

TEST_F(CompileTest, AFailedSaveIsAnErrorAndKeepsTheOldFile) {
    ASSERT_EQ(compile("A DIALOG\nEND\n"), "");
    const std::string before = read(rcx);
    EXPECT_NE(CompileResources({write("b.rc", "B DIALOG\nEND\n")}, folder / "none/out.rcx"), "");
    EXPECT_EQ(read(rcx), before);
}

TEST_F(CompileTest, ACutAtAnyByteIsRefused) {
    ASSERT_EQ(compile("#define A 1\nD DIALOG\nCAPTION=\"x\"\nLabel a 1\nEND\n"), "");
    const std::string whole = read(rcx);
    for (std::size_t size = 0; size < whole.size(); ++size) {
        CompiledResources resources;
        EXPECT_NE(resources.open(whole.substr(0, size)), "") << size;
        EXPECT_TRUE(resources.empty());
    }
    CompiledResources resources;
    EXPECT_NE(resources.open(whole + "x"), "");
    EXPECT_EQ(resources.open(whole), "");
}

TEST_F(CompileTest, AnyChangedByteIsRefused) {
    ASSERT_EQ(compile("#define A 1\nD DIALOG\nCAPTION=\"x\"\nLabel a 1\nEND\n"), "");
    const std::string whole = read(rcx);
    for (std::size_t at = 0; at < whole.size(); ++at) {
        std::string damaged = whole;
        damaged[at] = static_cast<char>(damaged[at] ^ 0x40);
        CompiledResources resources;
        EXPECT_NE(resources.open(damaged), "") << at;
    }
}

// The sum protects from accidents; a file made on purpose has the right one and must do no harm either.
TEST_F(CompileTest, DamageUnderARightSumNeverReadsOutside) {
    WindowTemplate window{{Type::Dialog, 0, "D", {{"CAPTION", "x"}}},
                          {{Type::Label, 1, "a", {}}},
                          {{Type::Menuitem, 2, "", {}}}};
    const std::string data = encodeWindow(window);
    for (std::size_t at = 0; at < data.size(); ++at)
        for (const int change : {0x01, 0x80, 0xff}) {
            std::string damaged = data;
            damaged[at] = static_cast<char>(damaged[at] ^ change);
            CompiledResources resources;
            ASSERT_EQ(resources.open(encodeResources({{"DIALOG", "D", "D DIALOG", damaged}}, {})), "");
            WindowTemplate result;
            static_cast<void>(resources.window("D", result));
            static_cast<void>(resources.info("CONTROLS", "D"));
        }
    for (std::size_t size = 0; size < data.size(); ++size) {
        CompiledResources resources;
        ASSERT_EQ(resources.open(encodeResources({{"DIALOG", "D", "", data.substr(0, size)}}, {})), "");
        WindowTemplate result;
        EXPECT_FALSE(resources.window("D", result)) << size;
    }
}

TEST_F(CompileTest, ObjectsWithoutANumberGetOneEach) {
    ASSERT_EQ(
        compile("D DIALOG\nMENU=M\nLabel a\nLabel\nLabel b 20000\nEND\nM MENU\nMenuitem\nMenuitem c\nEND\n"),
        "");
    CompiledResources resources;
    ASSERT_EQ(resources.open(read(rcx)), "");
    WindowTemplate window;
    ASSERT_TRUE(resources.window("d", window));
    EXPECT_EQ(window.controls[0].number, 20001);
    EXPECT_EQ(window.controls[1].number, 20002);
    EXPECT_EQ(window.menu[0].number, 20003);
    EXPECT_EQ(window.menu[1].number, 20004);
}

TEST_F(CompileTest, ChoicesAreNumbersInTheCompiledFile) {
    ASSERT_EQ(compile("D DIALOG\nLabel a\nALIGNMENT=centre\nShape s\nSHAPE=2\nEND\n"), "");
    CompiledResources resources;
    ASSERT_EQ(resources.open(read(rcx)), "");
    WindowTemplate window;
    ASSERT_TRUE(resources.window("D", window));
    EXPECT_EQ(valueOf(window.controls[0].properties, Type::Label, "ALIGNMENT"), "2");
    EXPECT_EQ(valueOf(window.controls[1].properties, Type::Shape, "SHAPE"), "2");
}

const std::string savedPath = "/home/user/a.rc", savedText = "A DIALOG\nEND\n";

using Operation = std::string (*)(const std::string& file);
constexpr Operation operations[] = {
    [](const std::string& file) { return ResourceDelete(file, "A"); },
    [](const std::string& file) { return ResourceRename(file, "A", "B"); },
    [](const std::string& file) { return ResourceWriteText(file, "p BITMAP \"x\""); },
    [](const std::string& file) {
        ObjectArray array{};
        array[0] = "NAME=A\nTYPEOF=Dialog\nCAPTION=\"x\"\n";
        return ResourceWrite(array, {}, file);
    }};

// Runs `operation` on a disk of its own that `prepare` makes fail; gives the error and what the file holds
// then.
template <class Prepare>
std::pair<std::string, std::string> runOn(os::SteeredFiles& disk, Operation operation, Prepare prepare) {
    disk.put(savedPath, savedText);
    os::FileSystem* const before = os::useFiles(&disk);
    disk.clearLog();
    prepare(disk);
    const std::string error = operation(savedPath);
    os::useFiles(before);
    return {error, disk.contents(savedPath)};
}

TEST(ResourceSave, ThatFailsAtAnyCallIsToldAndKeepsTheOldText) {
    for (const Operation operation : operations) {
        os::SteeredFiles disk;
        const auto [error, written] = runOn(disk, operation, [](os::SteeredFiles&) {});
        EXPECT_EQ(error, "");
        EXPECT_NE(written, savedText);
        const int calls = disk.calls();
        EXPECT_GT(calls, 3);
        int told = 0;
        for (int call = 1; call <= calls; ++call) {
            os::SteeredFiles failing;
            const auto [fault, after] = runOn(failing, operation, [=](os::SteeredFiles& one) {
                one.failAt(call, os::FileError::DiskFull);
            });
            EXPECT_TRUE(after == savedText || after == written) << call << ": " << after;
            EXPECT_TRUE(!fault.empty() || after == written) << call;
            told += fault.empty() ? 0 : 1;
        }
        EXPECT_GT(told, 0);
    }
}

TEST(ResourceSave, IsNotTriedWhenTheTextCannotBeRead) {
    for (const Operation operation : operations) {
        os::SteeredFiles failing;
        const auto [error, after] = runOn(failing, operation, [](os::SteeredFiles& one) {
            one.failAlways(os::FileCall::Read, os::FileError::ReadFailed);
        });
        EXPECT_TRUE(error.starts_with("'" + savedPath + "' cannot be read.")) << error;
        EXPECT_EQ(after, savedText);
        EXPECT_EQ(failing.calls(), 0);
    }
}

}  // namespace
}  // namespace tarn::platform
