// SPDX-License-Identifier: GPL-3.0-or-later
//
// The text of an edit window on Scintilla, by bytes: every byte of any file is kept, positions count bytes, a
// line typed ends like most lines of the file. Lines are coloured when they are first painted. Cost: a key
// restyles its line only; setting a text is one copy, and nothing is scanned until it is painted.
#pragma once

#include "platform/object.h"
#include "platform/qt/edit/tokens.h"

#include <Qsci/qsciscintillabase.h>

#include <string>
#include <string_view>
#include <vector>

namespace tarn::platform::types {
struct TextEdit;
}

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
    void replaceParts(const std::vector<TextEdit>& edits);  // one undo step; not reported
    // Marked places; they move with their text.
    void setMarks(const std::vector<Selection>& places);
    [[nodiscard]] std::vector<Selection> marks() const;
    [[nodiscard]] bool modified() const;
    void setModified(bool modified);

    void setFlags(int flags);
    void setMaxLength(int bytes) { limit_ = bytes; }  // 0: no limit
    void setTokens(std::string_view tokens);
    void setTextFont(const Font& font);

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

protected:
    bool event(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void changeEvent(QEvent* event) override;
    QMimeData* toMimeData(const QByteArray& text, bool rectangular) const override;
    QByteArray fromMimeData(const QMimeData* source, bool& rectangular) const override;

private:
    long send(unsigned message, long w = 0, long l = 0) const;
    long sendBytes(unsigned message, long w, const char* bytes) const;
    void onModified();  // comes before the text changes
    void tellReader();  // a screen reader, of what was put in last
    void onStyleNeeded(int end);
    void configure();
    void applyColours();
    void colourAnew();
    void applyNumberBar();
    void adoptLineEnd(std::string_view text);
    void replaceRange(long start, long end, std::string_view text);
    long changePlaces(const std::vector<TextEdit>& edits);
    void flush();                        // reports what has changed since the last time
    void insert(std::string_view text);  // in the place of the selection, whatever the limit
    void insertTyped(std::string_view text);
    bool refuses(std::string_view text);  // true, with a beep: no room for it
    void refuse();
    void step(unsigned message);     // SCI_UNDO or SCI_REDO
    void checkInsertion(int bytes);  // of whatever the control itself puts in
    void newLine();
    bool pasteBytes();           // true: done with, put in or refused
    bool pasteForeign();         // the same, of a text that another program has
    void paste();                // what the user has asked for, by key or menu
    bool shiftBlock(bool left);  // true: it was a block
    [[nodiscard]] std::string_view range(int from, int to) const;
    [[nodiscard]] int lineOf(int position) const;
    [[nodiscard]] int startOfLine(int line) const;

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
};

}  // namespace tarn::platform::qt
