// SPDX-License-Identifier: GPL-3.0-or-later
//
// Undo and redo in the dialog editor. A step is what one action of the user did to the lists (DESIGNSTEP of dlgstep.h),
// with the selection before and after it. The newest 1,000 are kept, over saves too, until another dialog is opened or the
// window goes. Undo may lead back behind a save; whether the dialog is marked as changed then follows from its lists and
// those that the file has. A name that a save has changed in the file is changed back there by the next save.
//
// What cannot be done beeps and changes nothing, as all does while the order of the controls is clicked.
// Cost: a step keeps the bytes that differ, and what steps have in common is kept once: 1,000 moves of one of 255 controls
// take 0.2 MB, of all 3.8 MB. A step costs a pass through the lists, an undo that and a redraw.
#pragma once

#include "ide/designer/dlgstep.h"
#include "kernel/windows/resources.h"

#include <cstddef>
#include <deque>
#include <map>
#include <optional>
#include <string>

namespace tarn {

// The steps by themselves, without the window.
class DesignHistory {
public:
    // Beyond `mostBytes` the oldest steps go too, but for one.
    explicit DesignHistory(std::size_t mostSteps = 1000, std::size_t mostBytes = std::size_t{64} << 20U)
        : mostSteps_(mostSteps), mostBytes_(mostBytes) {}
    DesignHistory(const DesignHistory&) = delete;
    DesignHistory& operator=(const DesignHistory&) = delete;

    void clear();
    // What had been undone is forgotten. Lists that changed without a step make those before them meaningless: they go.
    void note(const DesignLists& before, const DesignLists& after);
    // The lists as they were before, or after, the step; none if there is no step, or none that fits the lists.
    std::optional<DesignLists> undo(const DesignLists& now);
    std::optional<DesignLists> redo(const DesignLists& now);
    [[nodiscard]] bool canUndo() const { return done_ > 0; }
    [[nodiscard]] bool canRedo() const { return done_ < steps_.size(); }

    [[nodiscard]] std::size_t steps() const { return steps_.size(); }
    [[nodiscard]] std::size_t bytes() const { return bytes_; }  // of all that the steps keep, about

private:
    using Texts = std::map<std::string, int>;  // how many steps need each
    struct Side {                              // how to come to the state at one side of the step
        Texts::iterator lists, selection;
    };
    struct Step {
        Side back, forth;
    };
    Texts::iterator keep(std::string text);
    void letGo(Texts::iterator text);
    Side sideOf(const DesignLists& from, const DesignLists& to);
    void drop(const Step& step);
    void trim();
    std::optional<DesignLists> go(const DesignLists& now, const Side& side);

    Texts texts_;
    std::deque<Step> steps_;
    std::size_t done_ = 0;     // of them; those behind were undone
    std::size_t present_ = 0;  // the digest of the lists after the last step that is done
    std::size_t bytes_ = 0;
    std::size_t mostSteps_, mostBytes_;
};

// Another dialog is in the lists, `inFile` as its file has it.
void DIALOGHISTORYSTART(bool inFile);
void DIALOGHISTORYEND();    // the window goes
void DIALOGHISTORYSAVED();  // the file has what the lists have
void DIALOGHISTORYAPART();  // the file has something else than any state of the lists
// What saves have taken out of the file, so that an undo behind a save brings back the same bytes.
ResourcePast& DIALOGHISTORYPAST();
void NOTEDESIGNSTEP(const DesignLists& before, const DesignLists& after);
int DIALOGHISTORYNUMBER();  // of the dialog that is open: each start counts

bool DIALOGCANUNDO();
bool DIALOGCANREDO();
void DIALOGUNDO();
void DIALOGREDO();

}  // namespace tarn
