// SPDX-License-Identifier: Apache-2.0
//
// The widgets of edits, of one line and of several, which keep texts as bytes; at the end that of the edit window, whose
// component stands in a library of its own.
#include "platform/qt/controls/textpeers.h"

#include "os/paths.h"
#include "os/process.h"
#include "platform/model/linemarks.h"
#include "platform/qt/controls/editarea.h"
#include "platform/qt/drawing/pictures.h"
#include "platform/qt/texts.h"

#include <QApplication>
#include <QFontDatabase>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPointer>
#include <QSignalBlocker>
#include <QTextBlock>
#include <QTextOption>
#include <QValidator>

#include <dlfcn.h>

#include <algorithm>
#include <functional>
#include <limits>

namespace tarn::platform::qt {

namespace {

// One step through a text: its bytes, and the positions that it takes in a widget.
struct Step {
    std::size_t bytes;
    int positions;
};

Step stepAt(std::string_view bytes, std::size_t at, bool utf8, bool joinsEnds) {
    const auto c = static_cast<unsigned char>(bytes[at]);
    if (joinsEnds && c == '\r' && at + 1 < bytes.size() && bytes[at + 1] == '\n') return {2, 1};
    if (!utf8 || c < 0x80) return {1, 1};
    if (c >= 0xF0) return {4, 2};
    return {c >= 0xE0 ? 3U : 2U, 1};
}

// The mark of UTF-8 at the start of a text is not shown.
std::size_t markOf(std::string_view bytes, bool utf8) {
    return utf8 && bytes.substr(0, 3) == "\xEF\xBB\xBF" ? 3 : 0;
}

std::size_t byteOf(std::string_view bytes, int position, bool joinsEnds) {
    const bool utf8 = isUtf8(bytes);
    std::size_t at = markOf(bytes, utf8);
    while (at < bytes.size() && position > 0) {
        const Step step = stepAt(bytes, at, utf8, joinsEnds);
        at += step.bytes;
        position -= step.positions;
    }
    return at;
}

int positionOf(std::string_view bytes, int byte, bool joinsEnds) {
    const bool utf8 = isUtf8(bytes);
    const auto stop = std::min(static_cast<std::size_t>(std::max(byte, 0)), bytes.size());
    int position = 0;
    for (std::size_t at = markOf(bytes, utf8); at < stop;) {
        const Step step = stepAt(bytes, at, utf8, joinsEnds);
        at += step.bytes;
        position += step.positions;
    }
    return position;
}

bool everyEndIsPair(std::string_view bytes) {
    bool any = false;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (bytes[i] == '\r' && i + 1 < bytes.size() && bytes[i + 1] == '\n')
            ++i, any = true;
        else if (bytes[i] == '\r' || bytes[i] == '\n')
            return false;
    }
    return any;
}

bool isAscii(std::string_view bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](char c) { return static_cast<signed char>(c) >= 0; });
}

std::string utf8OfLatin1(std::string_view bytes) {
    return QString::fromLatin1(bytes.data(), static_cast<qsizetype>(bytes.size())).toStdString();
}

// Appends a text whose first line end must not become one with the CR before it.
void append(std::string& out, std::string_view more) {
    if (!out.empty() && out.back() == '\r' && !more.empty() && more.front() == '\n') out += '\r';
    out += more;
}

// The bytes of `now`, which the user made out of `before`, shown as `old`, in a widget that has one position
// for every line end: what stands before and behind the change keeps its bytes. New lines end with CR LF if
// all lines did, else with LF.
std::string merged(std::string_view before, const QString& old, const QString& now) {
    const qsizetype common = std::min(old.size(), now.size());
    qsizetype head = 0, tail = 0;
    while (head < common && old[head] == now[head]) ++head;
    if (head > 0 && old[head - 1].isHighSurrogate()) --head;
    while (tail < common - head && old[old.size() - 1 - tail] == now[now.size() - 1 - tail]) ++tail;
    if (tail > 0 && old[old.size() - tail].isLowSurrogate()) --tail;
    QString middle = now.mid(head, now.size() - head - tail);
    if (everyEndIsPair(before)) middle.replace(u'\n', QStringLiteral("\r\n"));
    std::string_view first = before.substr(0, byteOf(before, static_cast<int>(head), true));
    std::string_view last = before.substr(byteOf(before, static_cast<int>(old.size() - tail), true));
    const std::string added = bytesOf(middle, before);
    std::string firstAnew, lastAnew;
    if (!isUtf8(before) && isUtf8(added) && !isAscii(added)) {  // Latin-1 cannot hold what was added
        first = firstAnew = utf8OfLatin1(first);
        last = lastAnew = utf8OfLatin1(last);
    }
    std::string out(first);
    append(out, added);
    append(out, last);
    return out;
}

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
        takeStore(control, std::make_unique<LinesStore>(lines));
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

// ---- the edit window ----

MakeEditArea loadEditLibrary() {
    static const MakeEditArea make = [] {
        Dl_info self{};
        std::string folder;
        if (dladdr(reinterpret_cast<void*>(&loadEditLibrary), &self) != 0 && self.dli_fname != nullptr)
            folder = os::folderPart(self.dli_fname);
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
        apply(Property::Caption);
        apply(Property::Looks);
        apply(Property::Blocks);
        apply(Property::MarkMargin);
    }
    QWidget* focusWidget() override { return area_->textWidget(); }

    void apply(Property property) override {
        switch (property) {
        case Property::Caption:  // the name of what it shows
            area_->setName(control_->caption.empty() ? QObject::tr("Text") : shown(control_->caption));
            break;
        case Property::Flags:
        case Property::Readonly:
            area_->setFlags(control_->flags | (control_->readonly ? READONLY : 0));
            break;
        case Property::MaxLength: area_->setMaxLength(control_->maxLength); break;
        case Property::Tokens: area_->setTokens(control_->tokens); break;
        case Property::Font: area_->setFont(control_->font); break;
        case Property::Looks: area_->setLooks(control_->looks, control_->tabWidth, control_->zoom); break;
        case Property::Blocks: area_->setBlocks(control_->blocks); break;
        case Property::MarkMargin: area_->setMarkMargin(control_->markMargin); break;
        case Property::Folded: area_->foldAll(control_->folded); break;
        case Property::Choices: area_->showChoices(control_->choices, control_->typed); break;
        case Property::CallTip:
            area_->showCallTip(control_->tipPlace, control_->callTip, control_->tipMark);
            break;
        case Property::Status: area_->setStatus(shown(control_->status)); break;
        case Property::Passing: area_->setPassing(shown(control_->passing)); break;
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
    void zoomed(int points) override {
        if (control_ != nullptr) control_->zoom = points;
    }
    bool nameClicked(int position) override {
        if (control_ == nullptr) return false;
        Window* const window = findWindow(control_->object);
        if (window == nullptr) return false;
        const QPointer<EditAreaPeer> alive(this);
        const Selection before = control_->text->selection();
        control_->text->select(position, 0);
        if (userKey(*window, control_, KEY_CTRL_CLICK) || alive.isNull()) return true;
        if (control_ != nullptr) control_->text->select(before.start, before.length);
        return false;
    }
    void marginClicked(int line) override {
        if (control_ != nullptr) userMarginClick(*control_, line);
    }
    QImage picture(const std::string& name, int size, qreal ratio) override {
        return pictureScaled(name, QSize(size, size), ratio).toImage();
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
    limitLine(line, 0);  // before a text comes in: Qt's own limit would cut it
    return std::make_unique<LineStore>(line);
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

Peer* makeLinePeer(Control& control, QWidget* parent) {
    return new LinePeer(control, *new QLineEdit(parent));
}

Peer* makeLinesPeer(Control& control, QWidget* parent) {
    return new LinesPeer(control, *new LinesEdit(parent));
}

Peer* makeEditAreaPeer(Control& control, QWidget* parent) {
    if (loadEditLibrary() == nullptr) {
        auto* lines = new LinesEdit(parent);
        lines->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
        return new LinesPeer(control, *lines);
    }
    return new EditAreaPeer(control, *new Holder(parent));
}

}  // namespace tarn::platform::qt
