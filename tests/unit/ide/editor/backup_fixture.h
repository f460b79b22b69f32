// SPDX-License-Identifier: GPL-3.0-or-later
//
// The environment on a disk that is steered, with a file to make backups of, at a fixed time.
#pragma once

#include "ide/editor/backup.h"
#include "support/ide_fixture.h"
#include "support/steerable.h"

#include <string>
#include <vector>

namespace tarn {

class Backup : public IdeTest {
protected:
    const std::string file = "/home/user/note.txt";
    const std::string now = "/home/user/note.txt (2015-03-01 10-15-00).bak";
    os::SteeredFiles disk;
    os::SteeredClock clock;

    void SetUp() override {
        IdeTest::SetUp();
        loadWindows();
        clock.setLocal({2015, 3, 1, 10, 15, 0, 0});
        os::useClock(&clock);
        disk.put(ini(), read(ini()));
        disk.putFolder(dir + "state");
        disk.put(file, "one\n");
        os::useFiles(&disk);
        static_cast<void>(platform::takeHeadlessSounds());
    }
    void TearDown() override {
        os::useClock(nullptr);
        os::useFiles(nullptr);
        IdeTest::TearDown();
    }
    void setting(const char* key, const char* value) { PROFILESTRPUT(ini(), "EditorOptionsDlg", key, value); }
    void openAndChange() {
        EDITWNDOPEN(SDIEdit, file, false, 0);
        type("two\n");
    }
    void tick() {
        SDIEDIT(SDIEdit, TIMER_EVENT, SDIEdit, 0);
        Stamp(0, ReportErrors, DefaultErrorHandler);
    }
    static std::string day(int number) {
        return "/home/user/note.txt (2014-01-0" + STR(number) + " 00-00-00).bak";
    }
    void putDays(int count) {
        for (int i = 1; i <= count; i++) disk.put(day(i), "day " + STR(i));
    }
    std::vector<std::string> backups() {
        std::vector<std::string> found;
        for (const std::string& one : disk.allFiles())
            if (one.ends_with(".bak")) found.push_back(one);
        return found;
    }
};

}  // namespace tarn
