// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/textpeers.h"

#include "os/process.h"
#include "platform/qt/editarea.h"
#include "platform/qt/texts.h"

#include <QFontDatabase>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSignalBlocker>
#include <QTextBlock>

#include <dlfcn.h>

#include <algorithm>

namespace tarn::platform::qt {

namespace {

// A store over a widget of Qt. `bytes_` is the text as bytes, brought up to date when the widget's differs.
template <class Widget>
class WidgetStore : public TextStore {
public:
    explicit WidgetStore(Widget& widget) : widget_(&widget) {}

    std::string text() const override { return current(); }
    int length() const override { return static_cast<int>(current().size()); }

    void setText(std::string_view text) override {
        bytes_ = text;
        returns_ = bytes_.find("\r\n") != std::string::npos;
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

    const std::string& current() const {
        if (widget_ == nullptr) return bytes_;
        const QString now = get();
        if (now == shown_) return bytes_;
        bytes_ = bytesOf(now, bytes_);
        if (returns_) bytes_ = withReturns(bytes_);
        shown_ = now;
        return bytes_;
    }

    QPointer<Widget> widget_;

private:
    // The widget counts UTF-16 units and a line end as one, the model counts bytes.
    int byteAt(int position) const {
        const std::string& bytes = current();
        const QString head = get().left(position);
        return byteOffset(head, position, bytes) + (returns_ ? static_cast<int>(head.count(u'\n')) : 0);
    }
    int positionAt(int byte) const {
        const std::string& bytes = current();
        int position = textOffset(bytes, byte);
        if (!returns_) return position;
        for (auto at = bytes.find("\r\n"); at != std::string::npos && static_cast<int>(at) < byte;
             at = bytes.find("\r\n", at + 2))
            --position;
        return position;
    }
    static std::string withReturns(const std::string& bytes) {
        std::string out;
        for (const char c : bytes) {
            if (c == '\n') out += '\r';
            out += c;
        }
        return out;
    }

    mutable std::string bytes_;
    mutable QString shown_;
    std::string saved_;
    bool modified_ = false;
    bool returns_ = false;  // the text came with CR LF
};

class LineStore : public WidgetStore<QLineEdit> {
public:
    using WidgetStore::WidgetStore;

protected:
    void put(const QString& text) override { widget_->setText(text); }
    QString get() const override { return widget_->text(); }
    std::pair<int, int> marked() const override {
        if (!widget_->hasSelectedText()) return {widget_->cursorPosition(), widget_->cursorPosition()};
        return {widget_->selectionStart(), widget_->selectionEnd()};
    }
    void mark(int from, int to) override { widget_->setSelection(from, to - from); }
    void insert(const QString& text) override { widget_->insert(text); }
};

class LinesStore : public WidgetStore<QPlainTextEdit> {
public:
    using WidgetStore::WidgetStore;

protected:
    void put(const QString& text) override { widget_->setPlainText(text); }
    QString get() const override { return widget_->toPlainText(); }
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
        case Property::MaxLength:
            line_.setMaxLength(control_->maxLength > 0 ? control_->maxLength : 32767);
            break;
        case Property::Password:
            line_.setEchoMode(control_->passwordChar != 0 ? QLineEdit::Password : QLineEdit::Normal);
            break;
        default: break;
        }
    }
    void letGo() override { giveBackText(*control_); }

private:
    QLineEdit& line_;
};

class LinesPeer : public Peer {
public:
    LinesPeer(Control& control, QPlainTextEdit& lines) : Peer(control, lines), lines_(lines) {
        lines.setTabChangesFocus(true);
        takeStore(control, std::make_unique<LinesStore>(lines));
        connect(&lines, &QPlainTextEdit::textChanged, this, [this] {
            if (control_ != nullptr) userChange(*control_);
        });
    }
    void apply(Property property) override {
        if (property == Property::Readonly) lines_.setReadOnly(control_->readonly);
    }
    void letGo() override { giveBackText(*control_); }

private:
    QPlainTextEdit& lines_;
};

// ---- the edit window ----

MakeEditArea loadEditLibrary() {
    static const MakeEditArea make = [] {
        Dl_info self{};
        std::string folder;
        if (dladdr(reinterpret_cast<void*>(&loadEditLibrary), &self) != 0 && self.dli_fname != nullptr)
            folder = std::string(self.dli_fname);
        folder.resize(folder.rfind('/') == std::string::npos ? 0 : folder.rfind('/') + 1);
        void* library = dlopen((folder + "libtarnwick-edit.so").c_str(), RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr) {
            os::debugOutput(std::string("The edit window cannot be loaded: ") + dlerror() + "\n");
            return MakeEditArea(nullptr);
        }
        return reinterpret_cast<MakeEditArea>(dlsym(library, "tarn_make_edit_area"));
    }();
    return make;
}

class EditAreaPeer : public Peer, public EditEvents {
public:
    EditAreaPeer(Control& control, QWidget& holder) : Peer(control, holder) {
        area_ = loadEditLibrary()(&holder, *this);
        takeStore(control, area_->store());
        area_->setName(shown(control.caption.empty() ? control.name : control.caption));
    }
    QWidget* focusWidget() override { return area_->textWidget(); }

    void apply(Property property) override {
        switch (property) {
        case Property::Flags:
        case Property::Readonly:
            area_->setFlags(control_->flags | (control_->readonly ? READONLY : 0));
            break;
        case Property::Tokens: area_->setTokens(control_->tokens); break;
        case Property::Font: area_->setFont(control_->font); break;
        default: break;
        }
    }
    void letGo() override { giveBackText(*control_); }

    void changed() override {
        if (control_ != nullptr) userChange(*control_);
    }
    void doubleClicked(QPoint at) override {
        if (control_ != nullptr) userDoubleClick(*control_, at.x(), at.y());
    }
    void infoAsked(QPoint at) override {
        if (control_ != nullptr) userInfo(*control_, at.x(), at.y());
    }

private:
    EditArea* area_ = nullptr;
};

// Fills its parent and lets its only child fill itself.
class Holder : public QWidget {
public:
    using QWidget::QWidget;

protected:
    void resizeEvent(QResizeEvent*) override {
        for (QObject* child : children())
            if (auto* widget = qobject_cast<QWidget*>(child); widget != nullptr) widget->setGeometry(rect());
    }
};

}  // namespace

std::unique_ptr<TextStore> makeLineStore(QLineEdit& line) {
    return std::make_unique<LineStore>(line);
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

Peer* makeLinePeer(Control& control, QWidget* parent) {
    return new LinePeer(control, *new QLineEdit(parent));
}

Peer* makeLinesPeer(Control& control, QWidget* parent) {
    return new LinesPeer(control, *new QPlainTextEdit(parent));
}

Peer* makeEditAreaPeer(Control& control, QWidget* parent) {
    if (loadEditLibrary() == nullptr) {
        auto* lines = new QPlainTextEdit(parent);
        lines->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
        return new LinesPeer(control, *lines);
    }
    return new EditAreaPeer(control, *new Holder(parent));
}

}  // namespace tarn::platform::qt
