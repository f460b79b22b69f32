// SPDX-License-Identifier: GPL-3.0-or-later
//
// A user who does anything in the dialog editor, as the Monkey does in the whole environment: it opens dialogs, draws,
// types, undoes, saves and closes them, while another program writes to their files. What DesignWatch tells must hold
// after each step.
#pragma once

#include "behaviour/design_watch.h"
#include "behaviour/monkey.h"

#include <map>
#include <utility>

class QPoint;

namespace tarn {

class DesignerMonkey : public Monkey {
public:
    using Monkey::Monkey;

protected:
    bool waits() override { return holds_; }
    void act() override;
    void answered(const std::string& title, const std::string& text) override;

private:
    struct Action;
    static const std::vector<Action>& actions();

    void makeFiles();
    void inDialog();
    void open();
    void point();
    void drag();
    void rightClick();
    void designKey();
    void toolbox();
    void menu();
    void property();
    void resize();
    void outside();
    void undoAll();
    void closeEditor();
    [[nodiscard]] QPoint place(QWidget& window);
    void press(QWidget& client, const QPoint& from, const QPoint& to, int modifiers);
    [[nodiscard]] std::string another(const std::string& text);

    std::map<std::string, std::string> files_;  // of resources, with what they were at the start
    DesignWatch watch_;
    bool holds_ = false;  // a button of the mouse
};

// Resource files below `folder`: those of the environment and of the examples.
void prepareDesignerMonkey(const std::string& sources, const std::string& folder);

}  // namespace tarn
