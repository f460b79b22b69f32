// SPDX-License-Identifier: Apache-2.0
//
// Installing and removing. An installation is there whole or not at all: what is made stands in a work folder beside the
// place, `.NAME.setup/`, until it has been written to the disk; then it takes its place by renaming, and what was there
// before stays in the work folder until the last desktop entry is written. Whoever dies on the way leaves the work folder,
// and the next run undoes what it tells:
//
//     new/      the files, until they have taken their place
//     old/      the installation that was there before
//     journal   there while something outside of the work folder may be half done: a line for each fact
//                   had                 an installation was there before
//                   entry PATH          a desktop entry that is written or removed
//                   kept N PATH         the same; its old text is the file `entryN`
//
// The folders that are made on the way to the places stand in a note of their own, `.NAME.setup.folders`, one a line and then
// an empty line, in the nearest folder that was there before: they are made ahead of the work folder.
//
// A later version takes the place of an earlier one. Files that its program or its user has made stay; a file of the
// earlier version that was changed stays as NAME.saved.
//
// What was installed is told by `uninstall.list` in the folder of the program: the package's name, its files with sizes and
// sums, the entries, and the folders that were made for it.
#pragma once

#include "toolchain/setup/packed.h"
#include "toolchain/setup/places.h"

#include <functional>
#include <string>

namespace tarn::setup {

struct Installer {
    std::string file;  // that carries the package
    Layout layout;
    Package package;  // its head
};
// Reads the head of a checked file. What is wrong, empty if nothing is.
std::string openInstaller(const std::string& file, const Layout& layout, Installer& installer);

// Asked now and then with the bytes that are done; false ends the installation.
using GoesOn = std::function<bool(std::int64_t done, std::int64_t total)>;

// What went wrong, empty on success. Everything is as it was before then.
std::string install(const Installer& installer, const Places& places, const GoesOn& goesOn = {});

// Undoes what an installation into that folder has left half done. What could not be undone; empty as a rule.
std::string undoUnfinished(const std::string& app);

// Removes the installation in that folder: its files, its entries, and the folders that were made for it. A first one that
// was not finished is undone. Files that are not its own stay, and so does the folder then, with a list that names no files:
// `stayed`. What went wrong, empty on success; it can be run again.
std::string uninstall(const std::string& app, bool& stayed);

// The name of what is installed there; empty if nothing is.
std::string installedName(const std::string& app);

}  // namespace tarn::setup
