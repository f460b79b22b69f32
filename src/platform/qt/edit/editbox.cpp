// SPDX-License-Identifier: GPL-3.0-or-later
//
// The edit window as the view sees it: text and status bar in one widget, and the store over the text.
#include "platform/operations/linemarks.h"
#include "platform/operations/textedits.h"
#include "platform/qt/controls/editarea.h"
#include "platform/qt/edit/accessible.h"
#include "platform/qt/edit/colours.h"
#include "platform/qt/edit/statusbar.h"
#include "platform/qt/edit/textarea.h"

#include <QAccessible>
#include <QLocale>
#include <QPointer>
#include <QTimer>
#include <QWidget>

namespace tarn::platform::qt {

namespace {

class Store : public TextStore {
public:
    explicit Store(TextArea& area) : area_(&area) {}
    std::string text() const override { return area_ != nullptr ? area_->bytes() : std::string(); }
    void setText(std::string_view text) override {
        if (area_ != nullptr) area_->setBytes(text);
    }
    int length() const override { return area_ != nullptr ? area_->length() : 0; }
    Selection selection() const override { return area_ != nullptr ? area_->selection() : Selection{}; }
    void select(int start, int length) override {
        if (area_ != nullptr) area_->select(start, length);
    }
    void replaceSelection(std::string_view text) override {
        if (area_ != nullptr) area_->replaceSelection(text);
    }
    void replaceParts(const std::vector<TextEdit>& edits) override {
        if (area_ != nullptr && !area_->replaceParts(edits)) TextStore::replaceParts(edits);
    }
    void setMarks(const std::vector<Selection>& places) override {
        if (area_ != nullptr) area_->setMarks(places);
    }
    std::vector<Selection> marks() const override {
        return area_ != nullptr ? area_->marks() : std::vector<Selection>();
    }
    void setFolds(const std::vector<int>& lines) override {
        if (area_ != nullptr) area_->setFolds(lines);
    }
    std::vector<int> folds() const override {
        return area_ != nullptr ? area_->folds() : std::vector<int>();
    }
    void setLineMarks(const std::vector<LineMark>& marks) override {
        if (area_ != nullptr) area_->setLineMarks(marks);
    }
    std::vector<LineMark> lineMarks() const override {
        return area_ != nullptr ? area_->lineMarks() : std::vector<LineMark>();
    }
    bool modified() const override { return area_ != nullptr && area_->modified(); }
    void replaceRange(int start, int length, std::string_view text) override {
        if (area_ != nullptr) area_->replaceRange(start, length, text);
    }
    bool canUndo() const override { return area_ != nullptr && area_->canUndo(); }
    bool canRedo() const override { return area_ != nullptr && area_->canRedo(); }
    void undo() override {
        if (area_ != nullptr) area_->undo();
    }
    void redo() override {
        if (area_ != nullptr) area_->redo();
    }
    void setModified(bool modified) override {
        if (area_ != nullptr) area_->setModified(modified);
    }

    std::string range(int start, int length) const override {
        return area_ != nullptr ? area_->range(start, length) : std::string();
    }
    int lineEnds() const override {
        return area_ != nullptr ? area_->lineEnds() : static_cast<int>(ENDS_NONE);
    }
    bool convertLineEnds(int ends, int most) override {
        return area_ != nullptr && area_->convertLineEnds(ends, most);
    }

private:
    QPointer<TextArea> area_;
};

class EditBox : public QWidget, public EditArea {
public:
    EditBox(QWidget* parent, EditEvents& events)
        : QWidget(parent), events_(events), text_(new TextArea(this)), bar_(new StatusBar(this)) {
        setFocusProxy(text_);
        text_->setObjectName(QStringLiteral("text"));
        bar_->hide();
        connect(text_, &TextArea::edited, this, [this] {
            say({});
            events_.changed();
        });
        connect(text_, &TextArea::refused, this, [this](int limit) {
            say(tr("No room: a text has at most %1 bytes").arg(QLocale().toString(limit)));
        });
        saying_.setSingleShot(true);
        connect(&saying_, &QTimer::timeout, this, [this] { say({}); });
        connect(text_, &TextArea::moved, this, [this] { tellSoon(); });
        connect(text_, &TextArea::pressedTwice, this,
                [this](QPoint at) { events_.doubleClicked(text_->mapTo(this, at)); });
        connect(text_, &TextArea::zoomed, this, [this](int points) { events_.zoomed(points); });
        connect(text_, &TextArea::goesOn, this, [this] { say({}); });
        text_->picture = [this](const std::string& name, int size, qreal ratio) {
            return events_.picture(name, size, ratio);
        };
        connect(text_, &TextArea::marginPressed, this, [this](int line) { events_.marginClicked(line); });
        text_->nameClicked = [this](int position) { return events_.nameClicked(position); };
        bar_->rightClicked = [this](QPoint at) { events_.infoAsked(bar_->mapTo(this, at)); };
        tellSoon();
    }

    QWidget* widget() override { return this; }
    QWidget* textWidget() override { return text_; }
    std::unique_ptr<TextStore> store() override { return std::make_unique<Store>(*text_); }
    void setFlags(int flags) override {
        text_->setFlags(flags);
        bar_->setVisible((flags & STATUSBAR) != 0);
        layOut();
    }
    void setMaxLength(int bytes) override { text_->setMaxLength(bytes); }
    void setTokens(std::string_view tokens) override { text_->setTokens(tokens); }
    void setFont(const Font& font) override { text_->setTextFont(font); }
    void setName(const QString& name) override { text_->setAccessibleName(name); }
    void setLooks(int looks, int tabWidth, int zoom) override { text_->setLooks(looks, tabWidth, zoom); }
    void setMarkMargin(bool shown) override { text_->setMarkMargin(shown); }
    void setBlocks(std::string_view rules) override { text_->setBlocks(rules); }
    void foldAll(bool folded) override { text_->foldAll(folded); }
    void showChoices(std::string_view rows, int typed) override { text_->showChoices(rows, typed); }
    void showCallTip(int position, std::string_view text, const Selection& mark) override {
        text_->showCallTip(position, text, mark);
    }
    void setPassing(const QString& text) override { say(text); }
    void setStatus(const QString& text) override {
        status_ = text;
        tellSoon();
    }

protected:
    void resizeEvent(QResizeEvent*) override { layOut(); }

private:
    void layOut() {
        const int bar = bar_->isVisibleTo(this) ? bar_->sizeHint().height() : 0;
        text_->setGeometry(0, 0, width(), height() - bar);
        bar_->setGeometry(0, height() - bar, width(), bar);
    }
    // Stands in the status bar for a while, or until the user goes on.
    void say(const QString& message) {
        constexpr int milliseconds = 8000;
        if (message.isEmpty())
            saying_.stop();
        else
            saying_.start(milliseconds);
        if (message == message_) return;
        message_ = message;
        tellSoon();
    }
    // Once for all that a key does.
    void tellSoon() {
        if (told_) return;
        told_ = true;
        QTimer::singleShot(0, this, [this] { tell(); });
    }
    void tell() {
        told_ = false;
        if (!bar_->isVisibleTo(this)) return;
        const auto place = text_->place();
        const QLocale locale;
        QStringList parts{tr("Line %1, column %2").arg(place.line).arg(place.column),
                          text_->overwriting() ? tr("Overwrite") : tr("Insert"),
                          text_->modified() ? tr("Modified") : QString()};
        for (const QString& more : {endsText(), status_, rowsText(), message_})
            if (!more.isEmpty()) parts << more;
        bar_->setParts(parts << tr("%1 bytes").arg(locale.toString(text_->length())));
    }

    QString endsText() {
        static constexpr const char* names[] = {"LF", "CR LF", "CR", QT_TR_NOOP("Mixed ends")};
        const int ends = text_->lineEnds();
        return ends < ENDS_NONE ? tr(names[ends]) : QString();
    }

    QString rowsText() {
        if (!text_->rows().on()) return {};
        return tr("Lines over %1 bytes stand in rows, without colours and numbers")
            .arg(QLocale().toString(Rows::LongLine));
    }

    EditEvents& events_;
    TextArea* text_;
    StatusBar* bar_;
    QString status_, message_;
    QTimer saying_;  // how long a message stands
    bool told_ = false;
};

}  // namespace

}  // namespace tarn::platform::qt

extern "C" __attribute__((visibility("default"))) tarn::platform::qt::EditArea*
tarn_make_edit_area(QWidget* parent, tarn::platform::qt::EditEvents& events) {
    using namespace tarn::platform::qt;
    [[maybe_unused]] static const bool once = (QAccessible::installFactory(makeTextAccessible), true);
    return new EditBox(parent, events);
}
