// SPDX-License-Identifier: GPL-3.0-or-later
//
// The text of an edit window on Scintilla, by bytes: every byte of any file is kept, positions count bytes, a
// line typed ends like most lines of the file. Lines are coloured when they are first painted. Cost: a key
// restyles its line only; setting a text is one copy, and nothing is scanned until it is painted. Endless lines stand
// in rows (rows.h), and have no colours and no blocks; all positions here count the bytes of the text.
#pragma once

#include "platform/object.h"
#include "platform/qt/edit/blocks.h"
#include "platform/qt/edit/rows.h"
#include "platform/qt/edit/tokens.h"

#include <Qsci/qsciscintillabase.h>

#include <QImage>

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::platform::types {
struct TextEdit;
struct LineMark;
}  // namespace tarn::platform::types

namespace tarn::platform::qt {

class TextArea : public QsciScintillaBase {
    Q_OBJECT

public:
    explicit TextArea(QWidget* parent);

    [[nodiscard]] std::string bytes() const;
    void setBytes(std::string_view text);  // empties the undo list; no change is reported
    [[nodiscard]] int length() const;
    [[nodiscard]] Selection selection() const;
    void select(int start, int length);            // scrolls it into view
    void replaceSelection(std::string_view text);  // one undo step; not reported
    // One undo step, not reported; caret and selection stay with their text, nothing is scrolled.
    void replaceRange(int start, int length, std::string_view text);
    [[nodiscard]] bool canUndo() const;
    [[nodiscard]] bool canRedo() const;
    void undo();  // not reported
    void redo();
    // One undo step; not reported. False, and nothing is done, if it takes more than changing each place by itself.
    bool replaceParts(const std::vector<TextEdit>& edits);
    // Marked places; they move with their text.
    void setMarks(const std::vector<Selection>& places);
    [[nodiscard]] std::vector<Selection> marks() const;
    // Marked lines; they move with their lines.
    void setLineMarks(const std::vector<LineMark>& marks);
    [[nodiscard]] std::vector<LineMark> lineMarks() const;
    void setMarkMargin(bool shown);
    [[nodiscard]] bool modified() const;
    void setModified(bool modified);

    void setFlags(int flags);
    void setMaxLength(int bytes) { limit_ = bytes; }  // 0: no limit
    void setTokens(std::string_view tokens);
    void setTextFont(const Font& font);
    void setLooks(int looks, int tabWidth, int zoom);
    void setBlocks(std::string_view rules);
    void foldAll(bool folded);
    void setFolds(const std::vector<int>& lines);
    [[nodiscard]] std::vector<int> folds() const;
    void showChoices(std::string_view rows, int typed);
    void showCallTip(int position, std::string_view text, const Selection& mark);
    [[nodiscard]] std::string range(int start, int length) const;  // from 1, cut to the text
    [[nodiscard]] int lineEnds();
    bool convertLineEnds(int ends, int most);
    [[nodiscard]] const Rows& rows() const;

    std::function<QImage(const std::string& name, int size, qreal ratio)> picture;
    std::function<bool(int position)> nameClicked;

    struct Place {
        int line = 1, column = 1;
    };
    [[nodiscard]] Place place() const;  // of the caret, for the status bar
    [[nodiscard]] bool overwriting() const;

signals:
    void edited();            // the user changed the text; after the change
    void moved();             // caret, modified mark, length or mode
    void refused(int limit);  // an edit that had no room
    void pressedTwice(QPoint at);
    void zoomed(int points);
    void goesOn();                 // a key, or a press of the mouse
    void marginPressed(int line);  // in the margin for marks, beside a line

protected:
    bool event(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void changeEvent(QEvent* event) override;
    QMimeData* toMimeData(const QByteArray& text, bool rectangular) const override;
    QByteArray fromMimeData(const QMimeData* source, bool& rectangular) const override;

private:
    static constexpr int UnsavedMark = 0, SavedMark = 1;
    static constexpr int BreakpointMark = 2, RuleMark = 3, CurrentMark = 4;  // in the order of LineMarkKind
    static constexpr int CurrentLineMark = 5;                                // behind the text of that line
    static constexpr long MarginMask = 1 << BreakpointMark | 1 << RuleMark | 1 << CurrentMark;
    static constexpr int MarkMargin = 0, NumberMargin = 1, ChangeMargin = 2, FoldMargin = 3;
    static constexpr int NumberGap = 6;       // pixels between number bar and text
    static constexpr long MarkIndicator = 8;  // the first that is not the control's own

    // textarea.cpp
    long send(unsigned message, long w = 0, long l = 0) const;
    long sendBytes(unsigned message, long w, const char* bytes) const;
    void configure();
    void listen();
    [[nodiscard]] std::string_view view(int from, int to) const;  // of the control
    [[nodiscard]] int size() const;                               // of the control
    [[nodiscard]] int lineOf(int position) const;
    [[nodiscard]] int startOfLine(int line) const;
    void adoptLineEnd(std::string_view text);
    void step(unsigned message);                          // SCI_UNDO or SCI_REDO
    void insert(std::string_view whole);                  // in the place of the selection, whatever the limit
    void put(long from, long to, std::string_view text);  // of the control
    void insertTyped(std::string_view text);
    bool refuses(std::string_view text);  // true, with a beep: no room for it
    void refuse();
    void checkInsertion(int bytes);  // of whatever the control itself puts in
    void onModified();               // these three come before the text changes
    void onInsertion(int position, int bytes);
    void onRemoval(int position, int bytes);
    void tellReader();  // a screen reader, of what was put in last
    void flush();       // reports what has changed since the last time
    void settle();      // forgets it: nothing to report

    // textarea_rows.cpp
    // What goes into the control for a text that comes in at a place of it.
    std::string_view inRows(int at, std::string_view text, std::string& store);
    // Of a part of the text, which is cut; from 0.
    [[nodiscard]] Selection inControl(int start, int length) const;
    void forgetOddSteps();
    // For what rows cannot take: sets the text anew, with an empty undo list. False: they take it.
    bool reloads(int start, int length, std::string_view text);
    [[nodiscard]] bool makesEndless(const std::vector<TextEdit>& edits) const;
    bool eraseInRows(int key);  // true: it was a key that erases

    // textarea_places.cpp
    int changePlaces(const std::vector<TextEdit>& edits, bool told);

    // textarea_user.cpp
    bool lineKey(const QKeyEvent& event);
    void newLine();
    bool shiftBlock(bool left);  // true: it was a block
    [[nodiscard]] std::string withOwnEnds(std::string_view text) const;
    bool pasteForeign();  // true: done with, put in or refused; of a text that another program has
    bool pasteBytes();    // the same, of any text
    void paste();         // what the user has asked for, by key or menu

    // textarea_colours.cpp
    void applyColours();
    void colourMarkings(const QColor& paper, const QColor& ink);
    void colourAnew();
    void onStyleNeeded(int end);

    // textarea_looks.cpp
    void applyNumberBar();
    void applyLooks();
    void zoomTo(int points);
    bool zoomKey(const QKeyEvent& event);
    void matchBrackets();
    [[nodiscard]] int partnerOf(int position) const;
    void noteChange(int position, int bytes);
    void applyMarks();
    void keepMarks();  // what is marked as changed is saved now
    void defineMarks();
    void noteEnds(std::string_view text);

    // textarea_linemarks.cpp
    void applyMarkMargin();
    void defineLineMarks();
    void dropLineMarks(int position, int bytes);  // of lines that are going as a whole

    // textarea_folds.cpp
    void scanLater(int first, int last);
    void scanBlocks(int most);
    bool scanLine(int line);
    void showLine(int line);

    // textarea_help.cpp
    int pictureNumber(const std::string& name);
    bool isOnScreen(long position);
    bool takesChoice();  // false: the word stands there already
    void styleHelp();
    [[nodiscard]] bool wordAt(QPoint at, int& position) const;
    [[nodiscard]] int placeAt(QPoint at) const;

    TokenRules rules_;
    std::string tokens_;
    std::string styles_;  // kept from one call to the next
    Font font_;
    int flags_ = 0;
    Selection added_;       // put in and not yet told to a screen reader
    int limit_ = 0;         // bytes; 0: none
    int digits_ = 0;        // for which the number bar is wide enough
    bool free_ = false;     // the limit does not hold
    bool setting_ = false;  // a text is being set: nothing to report
    bool changed_ = false;  // something to report
    bool marked_ = false;   // modified by decree, whatever the undo list says

    mutable Rows parts_;         // asked by rows()
    mutable Selection arrived_;  // put in and not yet looked through for them; from 0
    int looks_ = LOOK_LINE, tabWidth_ = 4;
    int ends_ = ENDS_NONE;  // a LineEnds
    bool endsKnown_ = true;
    int kinds_ = 0;  // bits: the line ends of all that was changed, as 1 << ENDS_LF
    struct Change {
        int position = 0, bytes = 0;
    };
    std::vector<Change> changes_;  // not yet marked
    BlockRules blocks_;
    int scanFrom_ = -1, scanTo_ = -1;  // lines whose blocks are to be found anew; -1: none
    bool scanning_ = false;            // it will be done
    bool scanned_ = false;             // some line has a depth
    bool markMargin_ = false;
    struct PlacedMark {
        int kinds = 0;
        std::vector<long> handles;  // of the control, which finds their line by them
    };
    std::vector<PlacedMark> placed_;
    std::map<std::string, int> pictures_;
    QPoint pressed_;
    enum class CtrlDrag { None, Pressed, Dragging } ctrl_ = CtrlDrag::None;
};

}  // namespace tarn::platform::qt
