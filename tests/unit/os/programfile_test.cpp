// SPDX-License-Identifier: Apache-2.0
#include "os/programfile.h"

#include "support/steerable.h"

#include <gtest/gtest.h>

namespace tarn::os {
namespace {

using namespace std::string_view_literals;

TEST(ProgramFile, IsKnownByItsFirstBytesAlone) {
    constexpr struct {
        std::string_view bytes;
        ProgramFile kind;
    } rows[] = {{"\177ELF\2\1\1"sv, ProgramFile::Elf},
                {"\177ELF"sv, ProgramFile::Elf},
                {"\177EL"sv, ProgramFile::None},
                {"ELF"sv, ProgramFile::None},
                {"#!/bin/sh\n"sv, ProgramFile::Script},
                {"#!"sv, ProgramFile::Script},
                {"#"sv, ProgramFile::None},
                {" #!"sv, ProgramFile::None},
                {"MZ\0\0"sv, ProgramFile::None},
                {""sv, ProgramFile::None}};
    SteeredFiles disk;
    const Steered steered(disk);
    for (const auto& row : rows) {
        EXPECT_EQ(programFileOf(row.bytes), row.kind) << row.bytes;
        disk.put("/a", row.bytes);
        EXPECT_EQ(programFileAt("/a"), row.kind) << row.bytes;
    }
    EXPECT_EQ(disk.openHandles(), 0);
}

TEST(ProgramFile, WhatCannotBeReadIsNone) {
    SteeredFiles disk;
    const Steered steered(disk);
    disk.putFolder("/folder");
    EXPECT_EQ(programFileAt("/none"), ProgramFile::None);
    EXPECT_EQ(programFileAt("/folder"), ProgramFile::None);
    disk.put("/a", "\177ELF");
    disk.failAlways(FileCall::Read, FileError::ReadFailed);
    EXPECT_EQ(programFileAt("/a"), ProgramFile::None);
    EXPECT_EQ(disk.openHandles(), 0);
}

}  // namespace
}  // namespace tarn::os
