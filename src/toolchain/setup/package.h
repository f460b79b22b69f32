// SPDX-License-Identifier: Apache-2.0
//
// What an installer carries, and how it stands in the one file that it is:
//
//     offset           size   meaning
//     0                s      what is started, an executable file by itself: it checks the whole and starts what follows from
//                             memory (first.c); s may be 0, then the next stands at the start and is started
//     s                n      the program that installs, an executable file by itself
//     s + n            m      the package: an xz stream of the head, a line for each fact, and the bytes of the files
//     s + n + m        8      "TARNPKG2"
//     s + n + m + 8    8      s, the lowest byte first
//     s + n + m + 16   8      n
//     s + n + m + 24   8      m
//     s + n + m + 32   8      CRC-64 of all that stands before
//
// The head ends with an empty line; the bytes of its files follow in their order, without anything between:
//
//     tarnwick setup 1
//     name wordcount                  the folder's, the menu's and the desktop's name for it
//     title Counts words
//     product Word Counter            what questions call it
//     publisher Ann & Co.
//     copyright (c) Ann & Co.
//     version 1.0
//     program wordcount.exe
//     shortcut menu icon              "menu" or "desktop"; "icon", "plain" or "uninstall"
//     file x 120320 wordcount.exe     "x" may be run, "-" not; bytes; the name
//
// All files stand in one folder. Names are those of files alone: a head with another one is refused. Nothing here keeps a
// whole file in memory.
#pragma once

#include "library/ship/packagesize.h"
#include "os/files.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::setup {

inline constexpr std::string_view IconName = "mainicon.ico", UninstallName = "uninstall",
                                  ListName = "uninstall.list", AskName = "tarnwick-ask";

struct PackedFile {
    std::string name;
    std::int64_t size = 0;
    bool executable = false;
};
struct Shortcut {
    enum class Place { Menu, Desktop };
    enum class Kind { Icon, Plain, Uninstall };
    Place place = Place::Menu;
    Kind kind = Kind::Plain;
};
struct Package {
    std::string name, title, product, publisher, copyright, version, program;
    std::vector<Shortcut> shortcuts;
    std::vector<PackedFile> files;

    [[nodiscard]] std::int64_t size() const;  // of the files
    [[nodiscard]] bool holds(std::string_view file) const;
};

// Whether it names a file in a folder and nothing else: no separator, no control character, neither "." nor "..".
bool isPlainName(std::string_view name);

std::string headOf(const Package& package);
// What is wrong, empty if nothing is.
std::string readHead(std::string_view head, Package& package);

// ---- the one file ----

struct Layout {
    std::int64_t first = 0, program = 0, package = 0;  // sizes

    [[nodiscard]] std::int64_t packageAt() const { return first + program; }
};
inline constexpr std::size_t TrailerSize = 40;
std::string trailerOf(const Layout& layout, std::uint64_t sum);

enum class Whole { Yes, NoPackage, Damaged };
// Reads the whole file. NoPackage: it does not end as an installer does.
Whole checkInstaller(const std::string& file, Layout& layout);

// CRC-64 of bytes that come in pieces.
std::uint64_t addToSum(std::uint64_t sum, std::string_view bytes);
// Of a file; false if it cannot be read.
bool sumOf(const std::string& file, std::uint64_t& sum);

}  // namespace tarn::setup
