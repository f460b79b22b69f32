// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/controls/textstores.h"

#include "platform/qt/controls/textbytes.h"
#include "platform/qt/texts.h"

#include <QApplication>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QSignalBlocker>
#include <QTextBlock>
#include <QValidator>

#include <algorithm>
#include <limits>

namespace tarn::platform::qt {

namespace {

// Takes what the user types into a line as long as it has room.
class ByteLimit : public QValidator {
public:
    using QValidator::QValidator;
    State validate(QString& text, int&) const override {
        if (limit == 0 || free) return Acceptable;
        const qsizetype size = sizeOf(text);
        // A text that the program made too long may still be made shorter.
        if (size > limit && size > size_) return Invalid;
        size_ = size;
        return Acceptable;
    }
    void end(const QString& text) {  // the program has written
        free = false;
        if (limit > 0) size_ = sizeOf(text);
    }
    int limit = 0;
    bool free = false;    // the program writes
    bool latin1 = false;  // a byte for each character

private:
    qsizetype sizeOf(const QString& text) const { return latin1 ? text.size() : text.toUtf8().size(); }
    mutable qsizetype size_ = 0;
};

ByteLimit* limitOf(const QLineEdit& line) {
    return line.findChild<ByteLimit*>(QString(), Qt::FindDirectChildrenOnly);
}

// A store over a widget of Qt. `bytes_` is the text as bytes, brought up to date when the widget's differs.
template <class Widget>
class WidgetStore : public TextStore {
public:
    explicit WidgetStore(Widget& widget) : widget_(&widget) {}

    std::string text() const override { return current(); }
    int length() const override { return static_cast<int>(current().size()); }

    void setText(std::string_view text) override {
        bytes_ = text;
        if (widget_ != nullptr) {
            const QSignalBlocker quiet(widget_);
            put(shown(text));
            shown_ = get();
        }
        saved_ = bytes_;
        modified_ = false;
    }

    Selection selection() const override {
        if (widget_ == nullptr) return {};
        const auto [start, end] = marked();
        const int from = byteAt(start);
        return {from + 1, byteAt(end) - from};
    }

    void select(int start, int length) override {
        if (widget_ == nullptr) return;
        const QSignalBlocker quiet(widget_);
        const int last = this->length();
        const int from = std::clamp(start - 1, 0, last);
        mark(positionAt(from), positionAt(std::clamp(start - 1 + length, from, last)));
    }

    void replaceSelection(std::string_view text) override {
        if (widget_ == nullptr) return;
        const QSignalBlocker quiet(widget_);
        insert(shown(text));
        modified_ = true;
    }

    bool modified() const override { return modified_ || (widget_ != nullptr && current() != saved_); }
    void setModified(bool modified) override {
        modified_ = modified;
        saved_ = current();
    }

protected:
    virtual void put(const QString& text) = 0;
    virtual QString get() const = 0;
    virtual std::pair<int, int> marked() const = 0;
    virtual void mark(int from, int to) = 0;
    virtual void insert(const QString& text) = 0;
    virtual bool joinsEnds() const { return false; }  // CR LF is one position

    const std::string& current() const {
        if (widget_ == nullptr) return bytes_;
        const QString now = get();
        if (now == shown_) return bytes_;
        bytes_ = joinsEnds() ? merged(bytes_, shown_, now) : bytesOf(now, bytes_);
        shown_ = now;
        return bytes_;
    }

    QPointer<Widget> widget_;
    mutable std::string bytes_;

private:
    // The widget counts UTF-16 units, the model bytes.
    int byteAt(int position) const { return static_cast<int>(byteOf(current(), position, joinsEnds())); }
    int positionAt(int byte) const { return positionOf(current(), byte, joinsEnds()); }

    mutable QString shown_;
    std::string saved_;
    bool modified_ = false;
};

class LineStore : public WidgetStore<QLineEdit> {
public:
    using WidgetStore::WidgetStore;

protected:
    void put(const QString& text) override {
        if (auto* limit = limitOf(*widget_); limit != nullptr) limit->latin1 = !isUtf8(bytes_);
        putLine(*widget_, text);
    }
    QString get() const override { return widget_->text(); }
    std::pair<int, int> marked() const override {
        if (!widget_->hasSelectedText()) return {widget_->cursorPosition(), widget_->cursorPosition()};
        return {widget_->selectionStart(), widget_->selectionEnd()};
    }
    void mark(int from, int to) override { widget_->setSelection(from, to - from); }
    void insert(const QString& text) override {
        auto* limit = limitOf(*widget_);
        if (limit != nullptr) limit->free = true;
        widget_->insert(text);
        if (limit != nullptr) limit->end(widget_->text());
    }
};

class LinesStore : public WidgetStore<QPlainTextEdit> {
public:
    using WidgetStore::WidgetStore;

protected:
    void put(const QString& text) override { widget_->setPlainText(text); }
    // Not toPlainText, which makes blanks of the no-break ones.
    QString get() const override {
        QString text = widget_->document()->toRawText();
        for (QChar& c : text)
            if (c == QChar::ParagraphSeparator || c == QChar::LineSeparator) c = u'\n';
        return text;
    }
    bool joinsEnds() const override { return true; }
    std::pair<int, int> marked() const override {
        const QTextCursor cursor = widget_->textCursor();
        return {cursor.selectionStart(), cursor.selectionEnd()};
    }
    void mark(int from, int to) override {
        QTextCursor cursor = widget_->textCursor();
        cursor.setPosition(from);
        cursor.setPosition(to, QTextCursor::KeepAnchor);
        widget_->setTextCursor(cursor);
        widget_->ensureCursorVisible();
    }
    void insert(const QString& text) override { widget_->insertPlainText(text); }
};

}  // namespace

std::unique_ptr<TextStore> makeLineStore(QLineEdit& line) {
    limitLine(line, 0);  // before a text comes in: Qt's own limit would cut it
    return std::make_unique<LineStore>(line);
}

std::unique_ptr<TextStore> makeLinesStore(QPlainTextEdit& lines) {
    return std::make_unique<LinesStore>(lines);
}

void limitLine(QLineEdit& line, int bytes) {
    ByteLimit* limit = limitOf(line);
    if (limit == nullptr) {
        line.setMaxLength(std::numeric_limits<int>::max());
        limit = new ByteLimit(&line);
        line.setValidator(limit);
        QObject::connect(&line, &QLineEdit::inputRejected, &line, [] { QApplication::beep(); });
    }
    limit->limit = bytes;
    limit->end(line.text());
}

void putLine(QLineEdit& line, const QString& text) {
    ByteLimit* limit = limitOf(line);
    if (limit != nullptr) limit->free = true;
    line.setText(text);
    if (limit != nullptr) limit->end(text);
}

void takeStore(Control& control, std::unique_ptr<TextStore> store) {
    if (control.text != nullptr) {
        const bool modified = control.text->modified();
        store->setText(control.text->text());
        store->setModified(modified);
    } else {
        store->setText("");
    }
    control.text = std::move(store);
}

void giveBackText(Control& control) {
    if (control.text == nullptr) return;
    auto plain = makePlainText();
    plain->setText(control.text->text());
    plain->setModified(control.text->modified());
    control.text = std::move(plain);
}

}  // namespace tarn::platform::qt
