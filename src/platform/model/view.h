// SPDX-License-Identifier: Apache-2.0
//
// What draws the object model. The model holds all state; a view is told of every change and reports what the
// user does through the functions of model.h (`userCommand`, `userClose`, ...). The headless view does
// nothing but keep modal waits going, so that the whole program runs without a screen; the Qt view makes
// widgets.
#pragma once

#include "platform/model/canvas.h"
#include "platform/model/track.h"
#include "platform/object.h"
#include "platform/windowing.h"

#include <functional>
#include <memory>
#include <string>

namespace tarn::platform {

class Control;
class Window;

enum class Property {
    Caption,
    Text,
    Tokens,
    Selection,
    Value,
    Checked,
    Modify,
    Readonly,
    MaxLength,
    Password,
    Range,
    Enabled,
    Visible,
    Flags,
    Status,
    Passing,
    Picture,
    Hint,
    Rows,
    ListIndex,
    Position,
    MinMax,
    Font,
    Colour,
    State,
    MenuItems,
    Looks,
    Blocks,
    Folded,
    Choices,
    CallTip,
    Focus,
    MarkMargin,
};

// What has changed of the debugger's window; see operations/debugger.h.
enum class DebugPart {
    Made,
    Gone,
    Caption,
    Status,
    Lines,
    Marks,
    Selection,
    Top,
    Extent,
    Tip,
    Running,  // the program stops, or runs
    Shown,    // nothing; what has changed is to be seen from now on
};

namespace types {
struct TextEdit;
struct LineMark;
class DebugWindow;
}  // namespace types

// The text of an edit window or an edit control. The model has a plain one; the Qt view puts the editor's own
// in its place, so that a text stands once. All positions are 1-based byte positions.
class TextStore {
public:
    virtual ~TextStore() = default;
    [[nodiscard]] virtual std::string text() const = 0;
    virtual void setText(std::string_view text) = 0;  // empties the undo list and clears the modify mark
    [[nodiscard]] virtual int length() const = 0;
    [[nodiscard]] virtual Selection selection() const = 0;
    virtual void select(int start, int length) = 0;  // scrolls it into view
    virtual void replaceSelection(std::string_view text) = 0;
    // Replaces `length` bytes from `start` on, in one undo step; the selection stays with its text.
    virtual void replaceRange(int start, int length, std::string_view text);
    // One step back, one forth. A store without steps can do neither.
    [[nodiscard]] virtual bool canUndo() const { return false; }
    [[nodiscard]] virtual bool canRedo() const { return false; }
    virtual void undo() {}
    virtual void redo() {}
    // All of them as one step; there is at least one, and they are sound (see operations/textedits.h).
    virtual void replaceParts(const std::vector<TextEdit>& edits);
    // Places that are shown as marked. A store whose control cannot show any keeps none.
    virtual void setMarks(const std::vector<Selection>& places) { static_cast<void>(places); }
    [[nodiscard]] virtual std::vector<Selection> marks() const { return {}; }
    // Lines, from 1, of which the block is folded; those that begin none are left out.
    virtual void setFolds(const std::vector<int>& lines) { static_cast<void>(lines); }
    [[nodiscard]] virtual std::vector<int> folds() const { return {}; }
    // Marks of lines, as operations/linemarks.h tells. As above: a store may keep none.
    virtual void setLineMarks(const std::vector<LineMark>& marks);
    [[nodiscard]] virtual std::vector<LineMark> lineMarks() const;
    [[nodiscard]] virtual bool modified() const = 0;
    virtual void setModified(bool modified) = 0;
    // The rest has a plain form that goes through the whole text.
    [[nodiscard]] virtual std::string range(int start, int length) const;  // cut to the text
    [[nodiscard]] virtual int lineEnds() const;                            // a LineEnds
    // In one undo step; false if nothing changed, or `most` bytes (0: any number) would not be enough.
    virtual bool convertLineEnds(int ends, int most);
};

// The line ends of a text, and a text with other ones.
int lineEndsOf(std::string_view text);
std::string withLineEnds(std::string_view text, int ends);

// A question that waits for the user, for views and for whoever plays the user.
struct Question {
    enum class Kind { Message, Input, List, OpenFile, SaveFile, Folder, Font, Colour, Print };
    Kind kind = Kind::Message;
    std::string title, text;
    std::vector<std::string> buttons;  // Message: captions with "&"
    std::vector<std::string> rows;     // List; Print: the printers
    // Input: default text; files: where to start. Font, Colour and Print: what is offered, in the form of the
    // answer, which dialogs.cpp describes.
    std::string value;
    std::string filter;
    BoxIcon icon = BoxIcon::None;
    int defaultButton = 1;
    bool several = false;     // OpenFile: of any number of files; the answer has a path on each line
    bool fixedWidth = false;  // Font: an empty name stands for the desktop's font of edit windows
};

class View {
public:
    virtual ~View() = default;
    // Windows. `load` may put a TextStore of its own into edit windows and edit controls.
    virtual void load(Window& window) = 0;
    virtual void unload(Window& window) = 0;
    virtual void show(Window& window) = 0;  // shows, raises and activates
    virtual void hide(Window& window) = 0;
    // The model has changed `control` (which may be the window itself).
    virtual void changed(Control& control, Property property) = 0;

    // Event loops. Runs until `until` is true; calls the idle function whenever nothing else is to be done.
    virtual void loop(const std::function<bool()>& until) = 0;
    virtual void pump() = 0;  // handles what waits, once
    virtual void wait(int milliseconds, bool inputEnds) = 0;
    virtual void setIdle(std::function<void()> idle) = 0;  // for whoever plays the user; null: none

    // The answer: the caption of a button, a text, a row, a path; empty for a box that was closed.
    virtual std::string ask(const Question& question) = 0;

    // Measures, in pixels.
    virtual int textWidth(const Control& control, std::string_view text) = 0;
    virtual int textHeight(const Control& control, std::string_view text) = 0;
    virtual Rect screen() = 0;
    virtual Desktop desktop() { return {}; }
    // What the frame of `window` adds to its client area: x and y are the offset of the client area in the
    // frame, w and h the pixels that the frame has more than the client area. A menu bar belongs to the
    // frame.
    virtual Rect frameExtents(const Window& window) {
        (void)window;
        return {};
    }
    virtual int dpi() = 0;

    // Drawing. The canvas of a window or an image; null where nothing shows. `wipe` empties the picture.
    virtual std::unique_ptr<Canvas> canvas(Control& control) = 0;
    virtual void wipe(Control& control) = 0;
    // Lets the user drag; `track.pressed` is for the view to fill in. The rectangle that came out.
    virtual Rect track(Window& window, Track track) = 0;
    // Of a picture in a format that the model does not know: its size; and a picture by its name in the format
    // of an extension ("PNG"); 0 x 0, or empty, if it cannot be done.
    virtual Picture measured(std::string_view bytes) = 0;
    virtual std::string encoded(const std::string& picture, const std::string& extension) = 0;

    // Printing. The default printer comes first, the one that prints to a file last; there always is that one.
    virtual std::vector<std::string> printers() = 0;
    virtual PrinterStatus printerStatus(const std::string& printer) = 0;
    virtual Paper paper(const std::string& printer) = 0;
    virtual std::unique_ptr<Canvas> startDocument(const std::string& printer, const std::string& document,
                                                  int copies) = 0;  // null: it failed

    virtual std::string clipboard() = 0;
    virtual void setClipboard(std::string_view text) = 0;

    virtual void sound() = 0;
    virtual void playSound(const std::string& file) = 0;
    virtual void setIcon(const std::string& file) = 0;
    virtual void setBusy(bool busy) = 0;
    virtual void setTimer(Control& owner, int milliseconds) = 0;
    virtual bool openUrl(const std::string& url) = 0;  // false: no program was found for it
    virtual void toolProgress(const std::string& text) = 0;
    virtual bool toolStopPressed() = 0;
    // Calls `ready` from any event loop whenever the descriptor can be read; null stops that.
    virtual void watch(int descriptor, std::function<void()> ready) = 0;
    virtual void raise(Window& window) = 0;  // to the foreground, as after a hand-over

    // The debugger's window, which is none of the model's windows. A view without one shows nothing, and leaves a stop
    // at once. `debugLoop` lets the user work in it until `until` is true; the program rests meanwhile.
    virtual void debugChanged(DebugWindow& window, DebugPart part) {
        static_cast<void>(window);
        static_cast<void>(part);
    }
    virtual void debugLoop(DebugWindow& window, const std::function<bool()>& until) {
        static_cast<void>(window);
        static_cast<void>(until);
    }
    // The program has not been in an event loop for a while: what the user does in the debugger's window happens, and
    // the user's break is noticed. Nothing else reaches the program or is lost.
    virtual void debugPump() {}

    // For whoever plays the user, from the idle function. The question whose box is open now, null if none
    // is, and its answer, given as the user would: the caption of a button (with or without its "&"), a text,
    // a row, a path, empty to close the box. False if the box has no such button or row.
    virtual const Question* asking() { return nullptr; }
    virtual bool answer(const std::string& text) {
        static_cast<void>(text);
        return false;
    }
    // Real input: `line` is "key F1", "key Ctrl+S", "type text" or "mouse WINDOW CONTROL". False if this view
    // has none.
    virtual bool input(const std::string& line) {
        static_cast<void>(line);
        return false;
    }
};

// The view in force, made when first needed: the Qt view if there is a screen and it can be loaded
// (libtarnwick-qt.so beside libtarnwick.so), else the headless one.
View& view();
std::unique_ptr<View> useView(std::unique_ptr<View> view);  // returns the one before; for tests
// `answer` plays the user at every question; without it each one is answered by closing its box.
std::unique_ptr<View> makeHeadlessView(std::function<std::string(const Question&)> answer = {});
// Presses Stop while a headless view shows the progress of a tool: `toolStopPressed` is true then until the
// progress is hidden. False if none is shown.
bool pressToolStop();
// How often headless views have beeped.
int headlessBeeps();
// Whether the desktop of headless views has a browser for `openUrl`; it has one unless told. The result is what
// was so before.
bool setHeadlessBrowser(bool there);
// The files that headless views were told to play since this was asked last.
std::vector<std::string> takeHeadlessSounds();
// What headless views were asked to open last.
const std::string& lastHeadlessUrl();

// What libtarnwick-qt.so exports under the name "tarn_make_view".
using MakeView = View* (*)();

}  // namespace tarn::platform
