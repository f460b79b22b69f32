// SPDX-License-Identifier: Apache-2.0
//
// The widgets of edits, of one line and of several.
#include "platform/qt/controls/textpeers.h"

#include "platform/qt/controls/textbytes.h"
#include "platform/qt/controls/textstores.h"
#include "platform/qt/texts.h"

#include <QApplication>
#include <QFontDatabase>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QSignalBlocker>
#include <QTextOption>

#include <algorithm>
#include <functional>

namespace tarn::platform::qt {

namespace {

class LinePeer : public Peer {
public:
    LinePeer(Control& control, QLineEdit& line) : Peer(control, line), line_(line) {
        static constexpr Qt::Alignment sides[] = {Qt::AlignLeft, Qt::AlignRight, Qt::AlignHCenter};
        line.setAlignment(sides[std::clamp(control.alignment, 0, 2)] | Qt::AlignVCenter);
        line.setFrame(control.border != 0);
        takeStore(control, makeLineStore(line));
        connect(&line, &QLineEdit::textEdited, this, [this] {
            if (control_ != nullptr) userChange(*control_);
        });
    }

    void apply(Property property) override {
        const QSignalBlocker quiet(&line_);
        switch (property) {
        case Property::Readonly: line_.setReadOnly(control_->readonly); break;
        case Property::MaxLength: limitLine(line_, control_->maxLength); break;
        case Property::Password:
            line_.setEchoMode(control_->passwordChar != 0 ? QLineEdit::Password : QLineEdit::Normal);
            break;
        case Property::Flags: takeOnlyKeys((control_->flags & KEYFIELD) != 0); break;
        default: break;
        }
    }
    void letGo() override { giveBackText(*control_); }

private:
    // Whole keys come from the view's filter; text in any other way would be none of their names.
    void takeOnlyKeys(bool only) {
        line_.setAttribute(Qt::WA_InputMethodEnabled, !only);
        line_.setAcceptDrops(!only);
        line_.setContextMenuPolicy(only ? Qt::NoContextMenu : Qt::DefaultContextMenu);
    }

    QLineEdit& line_;
};

// Refuses what goes beyond a limit in bytes, whatever way it comes in.
class LinesEdit : public QPlainTextEdit {
public:
    using QPlainTextEdit::QPlainTextEdit;
    std::function<bool(const QString&)> hasRoom;

protected:
    void keyPressEvent(QKeyEvent* event) override {
        const bool end = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
        const bool typed = !event->text().isEmpty() && event->text()[0].isPrint();
        const bool command = (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier)) != 0;
        if ((end || (typed && !command)) && refuses(end ? QStringLiteral("\n") : event->text())) return;
        QPlainTextEdit::keyPressEvent(event);
    }
    void insertFromMimeData(const QMimeData* source) override {
        if (!refuses(source->text())) QPlainTextEdit::insertFromMimeData(source);
    }
    void inputMethodEvent(QInputMethodEvent* event) override {
        if (event->commitString().isEmpty() || !refuses(event->commitString()))
            QPlainTextEdit::inputMethodEvent(event);
    }

private:
    bool refuses(const QString& text) {
        if (isReadOnly() || !hasRoom || hasRoom(text)) return false;
        QApplication::beep();
        return true;
    }
};

class LinesPeer : public Peer {
public:
    LinesPeer(Control& control, LinesEdit& lines) : Peer(control, lines), lines_(lines) {
        lines.setTabChangesFocus(true);
        if (!isEditWindowType(control.type))
            applyBars(lines, control);  // one that stands in for the edit window
        // A line that does not end at the edge has no side to stand at, so only lines from the left run on.
        if ((control.scrollBars & 1) != 0 && control.alignment == 0)
            lines.setLineWrapMode(QPlainTextEdit::NoWrap);
        static constexpr Qt::Alignment sides[] = {Qt::AlignLeft, Qt::AlignRight, Qt::AlignHCenter};
        QTextOption option = lines.document()->defaultTextOption();
        option.setAlignment(sides[std::clamp(control.alignment, 0, 2)]);
        lines.document()->setDefaultTextOption(option);
        takeStore(control, makeLinesStore(lines));
        lines.hasRoom = [this](const QString& text) { return hasRoom(text); };
        connect(&lines, &QPlainTextEdit::textChanged, this, [this] {
            if (control_ != nullptr) userChange(*control_);
        });
    }
    void apply(Property property) override {
        if (property == Property::Readonly) lines_.setReadOnly(control_->readonly);
    }
    void letGo() override { giveBackText(*control_); }

private:
    bool hasRoom(const QString& text) const {
        if (control_ == nullptr || control_->maxLength == 0) return true;
        const std::string all = control_->text->text();
        auto added = static_cast<int>(bytesOf(text, all).size());
        if (everyEndIsPair(all)) added += static_cast<int>(text.count(u'\n'));
        return static_cast<int>(all.size()) - control_->text->selection().length + added <=
               control_->maxLength;
    }
    LinesEdit& lines_;
};

}  // namespace

Peer* makeLinePeer(Control& control, QWidget* parent) {
    return new LinePeer(control, *new QLineEdit(parent));
}

Peer* makeLinesPeer(Control& control, QWidget* parent) {
    auto* lines = new LinesEdit(parent);
    if (isEditWindowType(control.type)) lines->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    return new LinesPeer(control, *lines);
}

}  // namespace tarn::platform::qt
