// SPDX-License-Identifier: Apache-2.0
//
// A user as a script of plain lines, who works the program through the object model or through real widgets.
//
//   args FILE ...                   command line of the program (first line only)
//   setting SECTION KEY VALUE       put into the settings ahead of the start
//   needs-screen                    (first lines) a case for real windows alone
//   hide-screen                     (first lines) programs that are started find no screen
//   margin LINE                     a click in the margin of the Code window, beside a line
//   command NAME [N]                picks a menu item or button of Main, of an array the n-th
//   press WINDOW CONTROL            presses a control
//   set WINDOW CONTROL VALUE        types a text, ticks a box, picks a row
//   edit "old" "new"                replaces a text in the Code window
//   select LINE                     puts the caret at a line of the Code window
//   dblclick WINDOW LINE            double click on a line of an edit window
//   dblclick WINDOW CONTROL ROW     double click on a row of a list
//   close WINDOW                    the window's close button
//   answer "&Yes"                   a button of the question that is open
//   choose-file F, input T, pick R  what the open file, input or list box is given ("" cancels)
//   start NAME FILE ...             a second copy of the program; its boxes go to {dir}/NAME.log
//   restart FILE ...                the program, which must have ended, is started again
//   sheet TITLE FILE                opens the property sheet on rows "name|options|value"; when it is closed,
//                                   FILE.out has a line OK or Cancel, and the values
//   strike WINDOW CONTROL KEY       a key that reaches a control ("-": the window) in any mode
//   design FILE NAME                opens a dialog in the dialog editor
//   point OBJECT ["2"|right]        clicks an object of the open dialog: its name, "-" the dialog, menu, margin
//   drag OBJECT DX DY [corner]      drags it, by resource units
//   stop-tool                       the Stop button while a tool runs
//   clock +3s                       lets time go by
//   tick WINDOW [CONTROL]           a timer of the window, or of a control, has come
//   activate WINDOW                 the user comes back to the window, as from another program
//   key F1, type TEXT, click WINDOW CONTROL, mouse WINDOW X Y CLICKS (in the text of an edit window)
//                                   real input
//   front TITLE                     brings the window of that title forward, of whatever program; keys go there then
//   REAL or MEANING                 with real input the first, in the model mode the second; a case with a line
//                                   of real input that has no second is skipped in the model mode
//   maximise WINDOW                 as its button on the title does
//   screenshot NAME                 a picture of the screen, where there is one
//   run COMMAND ...                 a shell command in {dir}
//   dump WINDOW                     prints names, captions and states, without geometry
//   wait WINDOW                     until it is visible
//   expect caption|text|value|enabled|visible|checked|rows WINDOW [CONTROL] VALUE
//   expect caption|... Main ITEM N VALUE      of the n-th item of an array
//   expect text-has WINDOW [CONTROL] TEXT     a part of its text
//   expect active WINDOW, expect hidden WINDOW, expect line N (caret of the Code window)
//   expect message TITLE TEXT       the open question, its text beginning so
//   expect ini SECTION KEY VALUE    of {profile}ide.ini
//   expect on-screen WINDOW, expect below WINDOW OTHER      frames as they are; `box` is the open question,
//                                   `stop` the window of a tool that runs
//   expect status TEXT              what the status bar of the Code window begins with, where there is one
//   expect help TOPIC               what the help was asked for last
//   expect page TITLE               what the page in the help window begins with, where there is one
//   expect menu CONTROL TEXT        what a menu item shows, where there are menus
//   expect front TITLE, expect clipboard TEXT      the window in front, what the clipboard holds, of whatever program
//   expect file F TEXT, expect file-has F TEXT, expect no-file F      F may hold "*"
//
// Words are separated by blanks; a word in double quotes may hold blanks, \n, \t, \" and \\. {dir} is the
// case's folder, {profile} the folder of the program. `#` begins a comment line. A line waits up to 20
// seconds for what it needs. A question that the next line does not answer, or an answer without a question,
// fails the case.
#pragma once

#include "platform/model/model.h"
#include "platform/model/view.h"
#include "support/script_lines.h"

#include <chrono>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace tarn {

// What the user does beside the object model: real keys and the mouse, tools and the splash window.
class Hands {
public:
    virtual ~Hands() = default;
    virtual int patience() { return 0; }  // milliseconds that a line of real input waits before it is done
    virtual bool key(const std::string& name) = 0;
    virtual bool type(const std::string& text) = 0;
    virtual bool click(const platform::Object& control) = 0;
    virtual bool mouse(const platform::Object& window, int x, int y, int clicks) = 0;
    // In the dialog editor: opens a dialog; presses on an object of it (once, "2" twice, "right" the other button); drags one
    // by its middle or its corner, by resource units. False: there is no such object.
    virtual bool design(const std::string& file, const std::string& dialog);
    virtual bool point(const std::string& object, const std::string& how);
    virtual bool drag(const std::string& object, bool corner, int dx, int dy);
    virtual bool bringForward(const std::string& title);  // true once the window of that title is in front
    virtual bool holdsButton() { return false; }          // of the mouse
    virtual bool stopTool() = 0;                          // false: no tool runs that could be stopped
    virtual void endSplash() = 0;
    virtual void screenshot(const std::string& path) = 0;
    // What is on the screen. The defaults are those of the model, which knows no frames and no texts.
    virtual void maximise(const platform::Object& window);
    virtual platform::Rect frameOf(const platform::Object& window);  // empty: no such window is shown
    virtual platform::Rect boxFrame() { return {0, 0, 1, 1}; }       // of the open question
    virtual platform::Rect stopFrame() { return {}; }                // of the window with the Stop button
    virtual bool statusText(std::string&) { return false; }          // false: this mode has no such thing
    virtual bool menuText(const platform::Control&, std::string&) { return false; }
    virtual bool helpTopic(std::string&) { return false; }
    virtual bool helpPage(std::string&) { return false; }
    virtual bool frontTitle(std::string&) { return false; }
    virtual bool clipboardText(std::string&) { return false; }
};

class UserDriver {
public:
    UserDriver(Script script, std::string dir, std::string profile, Hands& hands);
    void idle();          // does the next line if it can be done now
    void programEnded();  // does the lines that need no program, up to one that starts it again
    // True if the next line starts the program again, which the caller must do: the lines behind it are for a
    // driver of the program then.
    [[nodiscard]] bool restarts() const { return !finished() && script_.lines[at_].words[0] == "restart"; }
    [[nodiscard]] int lineNumber() const { return script_.lines[at_].number; }  // of the next line
    [[nodiscard]] bool failed() const { return !failure_.empty(); }
    [[nodiscard]] bool finished() const { return at_ >= script_.lines.size(); }
    [[nodiscard]] const std::string& failure() const { return failure_; }

private:
    enum class Outcome { Done, NotYet, Failed };
    using Deed = std::function<void(UserDriver&, const ScriptWords&)>;
    using Condition = std::function<bool(UserDriver&, const ScriptWords&)>;
    Script script_;
    std::string dir_, profile_;
    Hands& hands_;
    std::size_t at_ = 0;
    std::string failure_, lastSeen_;
    bool ended_ = false;
    std::chrono::steady_clock::time_point since_;

    void fail(const std::string& why);    // the line that comes next
    void refuse(const std::string& why);  // the line that is being done
    Outcome ready(const ScriptLine& line);
    bool possible(const ScriptWords& words);
    [[nodiscard]] bool rested(const std::string& what) const;
    void act(const ScriptLine& line);
    // By the first word of a line: what must be so before it is done, and what it does.
    static const std::map<std::string, Condition>& conditions();
    static const std::map<std::string, Deed>& deeds();

    bool expect(const ScriptWords& w);
    bool expectControl(const ScriptWords& w);
    bool expectFile(const ScriptWords& w);
    bool expectSeen(const ScriptWords& w);

    bool canCommand(const ScriptWords& words);
    bool canStrike(const ScriptWords& words);

    void activate(const ScriptWords& words);
    void answer(const ScriptWords& words);
    void edit(const std::string& from, const std::string& to);
    void key(const ScriptWords& words);
    void mouse(const ScriptWords& words);
    void point(const ScriptWords& words);
    void run(const ScriptWords& words);
    void set(const platform::Object& object, const std::string& value);
    void sheet(const std::string& title, const std::string& file);
    void startSecond(const ScriptWords& words);
    void strike(const ScriptWords& words);
    static void doubleClick(const platform::Object& object, int place);

    [[nodiscard]] std::string onScreen() const;
    // The item of Main that a line names: a control, or that element of its array.
    static platform::Object itemOf(const std::string& name, const std::string& place);
    static platform::Control* commanded(const ScriptWords& words);
};

std::string dumpWindow(const platform::Object& window);
bool isList(const platform::Control& control);  // a list box or a list of icons

}  // namespace tarn
