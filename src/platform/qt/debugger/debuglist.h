// SPDX-License-Identifier: Apache-2.0
//
// The list of the debugger's window: lines in a fixed-width font, with marks in a margin. It tells what the user does to
// a line by its functions, lines being numbered from 1, and keeps `selected` and `top` of the model as the user sees them.
#pragma once

#include "platform/model/debugger/debugwindow.h"

#include <QListView>

#include <functional>

namespace tarn::platform::qt {

class DebugRowPainter;
class DebugRows;

class DebugList : public QListView {
public:
    DebugList(DebugWindow& window, QWidget* parent);
    std::function<void(int line)> opened;             // a double click, or a click that expands
    std::function<void()> openedByKey;                // the selected line
    std::function<bool(const QKeyEvent& key)> typed;  // true: it goes no further
    std::function<void(int line)>
        margined;  // a click into the margin of numbers and marks; the line is selected
    std::function<void(int line, const std::string& text)>
        rested;  // the pointer, on the word that ends the text

    void release();    // before the model's window goes
    void showLines();  // other lines
    void showWidth();  // extent or numbers
    void showMarks();
    void showSelection();  // and brings it into view if the model says so
    void showTop();
    void showTip();  // at the pointer
    [[nodiscard]] QString selectedText() const;
    [[nodiscard]] QString wholeText() const;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;

private:
    enum class Part { Margin, Marker, Text };
    [[nodiscard]] int lineAt(const QPoint& place) const;  // 0: none
    [[nodiscard]] Part partAt(int x) const;
    [[nodiscard]] std::string textToWordAt(int line, int x) const;
    [[nodiscard]] int selectedLine() const;
    void keepInView();
    bool openBy(int key);  // an arrow that expands or collapses

    DebugWindow* window_;
    DebugRows* rows_;
    DebugRowPainter* painter_;
    QPoint pointer_;        // on the screen, when a tip was asked for
    bool showing_ = false;  // what happens now is the model's doing
    bool keeps_ = false;    // the selected line in view, until the user scrolls
};

}  // namespace tarn::platform::qt
