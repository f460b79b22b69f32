// SPDX-License-Identifier: Apache-2.0
#include "os/paths.h"

#include <gtest/gtest.h>

namespace tarn {
namespace {

TEST(PathsTest, APathIsTakenApartAtItsLastSeparatorAndPoint) {
    struct {
        std::string_view path, folder, stem, extension;
    } const cases[] = {
        {"", "", "", ""},
        {"a", "", "a", ""},
        {"a.txt", "", "a", ".txt"},
        {"a.b.txt", "", "a.b", ".txt"},
        {"a.", "", "a", "."},
        {".profile", "", "", ".profile"},
        {"/a.txt", "/", "a", ".txt"},
        {"c:\\a.d\\b.txt", "c:\\a.d\\", "b", ".txt"},
        {"a\\b/c", "a\\b/", "c", ""},
        {"a/b\\c.d", "a/b\\", "c", ".d"},
        {"/a.d/b", "/a.d/", "b", ""},
        {"/a.d/", "/a.d/", "", ""},
        {"a//b", "a//", "b", ""},
        {"..", "", ".", "."},
        {"c:a.txt", "", "c:a", ".txt"},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(paths::folder(row.path), row.folder) << row.path;
        EXPECT_EQ(paths::stem(row.path), row.stem) << row.path;
        EXPECT_EQ(paths::extension(row.path), row.extension) << row.path;
        EXPECT_EQ(paths::fileName(row.path), std::string(row.stem) + std::string(row.extension)) << row.path;
        EXPECT_EQ(paths::withoutExtension(row.path), std::string(row.folder) + std::string(row.stem))
            << row.path;
        EXPECT_EQ(paths::filePosition(row.path), row.folder.size()) << row.path;
    }
}

TEST(PathsTest, NativeNamesHaveOneSeparator) {
    struct {
        std::string path, folder, part, name, bare;
    } const cases[] = {
        {"", "", "", "", ""},
        {"a", "", "", "a", "a"},
        {"/", "/", "/", "", "/"},
        {"/a", "/", "/", "a", "/a"},
        {"/a/b", "/a", "/a/", "b", "/a/b"},
        {"a\\b", "", "", "a\\b", "a\\b"},
        {"/a/b/", "/a/b", "/a/b/", "", "/a/b/"},
        {"/a.d/b", "/a.d", "/a.d/", "b", "/a.d/b"},
        {"/a/b.c.exe", "/a", "/a/", "b.c.exe", "/a/b.c"},
        {"b.exe", "", "", "b.exe", "b"},
        {"/a/.b", "/a", "/a/", ".b", "/a/.b"},
        {".b", "", "", ".b", ".b"},
        {"b.", "", "", "b.", "b"},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(os::folderOf(row.path), row.folder) << row.path;
        EXPECT_EQ(os::folderPart(row.path), row.part) << row.path;
        EXPECT_EQ(os::nameOf(row.path), row.name) << row.path;
        EXPECT_EQ(os::withoutExtension(row.path), row.bare) << row.path;
    }
}

TEST(PathsTest, OneSlashJoins) {
    EXPECT_EQ(os::joined("/a", "b"), "/a/b");
    EXPECT_EQ(os::joined("/a/", "b"), "/a/b");
    EXPECT_EQ(os::joined("/", "b"), "/b");
    EXPECT_EQ(os::joined("", "b"), "b");
    std::string path = "/a//";
    os::stripTrailingSlashes(path);
    EXPECT_EQ(path, "/a");
    path = "//";
    os::stripTrailingSlashes(path);
    EXPECT_EQ(path, "/");
}

}  // namespace
}  // namespace tarn
