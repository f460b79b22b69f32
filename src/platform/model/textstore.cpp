// SPDX-License-Identifier: Apache-2.0
//
// The plain text of an edit control, for windows without a view that has an editor of its own; it keeps what each edit
// has replaced, so that it can be undone as there. And what every text store can do by going through its text.
#include "platform/model/linemarks.h"
#include "platform/model/model.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace tarn::platform {

namespace {

class PlainText : public TextStore {
public:
    std::string text() const override { return text_; }
    void setText(std::string_view text) override {
        text_ = text;
        selection_ = {};
        steps_.clear();
        done_ = 0;
        saved_ = 0;
        forced_ = false;
        marks_.clear();
        lineMarks_.clear();
    }
    int length() const override { return static_cast<int>(text_.size()); }
    Selection selection() const override { return selection_; }
    void select(int start, int length) override { selection_ = clamped(start, length); }
    void replaceSelection(std::string_view text) override {
        const int end = selection_.start + static_cast<int>(text.size());
        edit(selection_.start, selection_.length, text);
        selection_ = {end, 0};
    }
    void replaceRange(int start, int length, std::string_view text) override {
        const Selection range = clamped(start, length);
        const int from = moved(selection_.start, range, text),
                  to = moved(selection_.start + selection_.length, range, text);
        edit(range.start, range.length, text);
        selection_ = {from, to - from};
    }
    bool canUndo() const override { return done_ > 0; }
    bool canRedo() const override { return done_ < steps_.size(); }
    void undo() override {
        const Step& step = steps_[--done_];
        put(step.start, step.added.size(), step.removed);
    }
    void redo() override {
        const Step& step = steps_[done_++];
        put(step.start, step.removed.size(), step.added);
    }
    void setMarks(const std::vector<Selection>& places) override { marks_ = places; }
    std::vector<Selection> marks() const override { return marks_; }
    void setLineMarks(const std::vector<LineMark>& marks) override {
        const auto lines = 1 + std::count(text_.begin(), text_.end(), '\n');
        lineMarks_ = marks;
        for (LineMark& mark : lineMarks_)
            if (mark.line < 1 || mark.line > lines) mark.line = 0;
    }
    std::vector<LineMark> lineMarks() const override { return lineMarks_; }
    bool modified() const override { return forced_ || !saved_ || *saved_ != done_; }
    void setModified(bool modified) override {
        forced_ = modified;
        if (!modified) saved_ = done_;
    }

private:
    struct Step {
        std::size_t start;  // from 0
        std::string removed, added;
    };

    Selection clamped(int start, int length) const {
        const int from = std::clamp(start, 1, this->length() + 1);
        return {from, std::clamp(length, 0, this->length() + 1 - from)};
    }
    // Where a position goes when the range gets another text.
    static int moved(int position, const Selection& range, std::string_view text) {
        if (position <= range.start) return position;
        const int end = range.start + range.length, size = static_cast<int>(text.size());
        return position >= end ? position - range.length + size : std::min(position, range.start + size);
    }
    void edit(int start, int length, std::string_view text) {
        const auto from = static_cast<std::size_t>(start - 1), count = static_cast<std::size_t>(length);
        steps_.resize(done_);  // what was undone is lost with the next edit
        if (saved_ && *saved_ > done_) saved_.reset();
        steps_.push_back({from, text_.substr(from, count), std::string(text)});
        ++done_;
        replace(from, count, text);
    }
    void put(std::size_t start, std::size_t count, const std::string& text) {
        replace(start, count, text);
        selection_ = {static_cast<int>(start + text.size()) + 1, 0};
    }

    // What stands behind the range moves with it; a mark of which a part goes is gone.
    void replace(std::size_t from, std::size_t count, std::string_view text) {
        const int start = static_cast<int>(from) + 1, end = start + static_cast<int>(count);
        std::erase_if(marks_, [&](const Selection& mark) {
            return mark.start < end && mark.start + mark.length > start;
        });
        for (Selection& mark : marks_)
            if (mark.start >= end) mark.start += static_cast<int>(text.size()) - static_cast<int>(count);
        moveLineMarks(lineMarks_, text_, from, count, text);
        text_.replace(from, count, text);
    }

    std::string text_;
    std::vector<Selection> marks_;
    std::vector<LineMark> lineMarks_;
    Selection selection_;
    std::vector<Step> steps_;
    std::size_t done_ = 0;  // how many of them are done and not undone
    std::optional<std::size_t> saved_ =
        0;                 // how many were when the text was not modified; none: it cannot be again
    bool forced_ = false;  // modified by decree
};

// Calls `end` with the place and the length of each line end, in their order.
template <class End>
void eachLineEnd(std::string_view text, End end) {
    std::size_t lf = text.find('\n'), cr = text.find('\r');
    while (lf != cr) {  // equal only when there are no more of either
        if (lf < cr) {
            end(lf, std::size_t{1});
        } else {
            const bool pair = lf == cr + 1;
            end(cr, std::size_t{pair ? 2U : 1U});
            cr = text.find('\r', cr + 1);
            if (!pair) continue;
        }
        lf = text.find('\n', lf + 1);
    }
}

}  // namespace

int lineEndsOf(std::string_view text) {
    int found = ENDS_NONE;
    eachLineEnd(text, [&](std::size_t at, std::size_t length) {
        const int one = length == 2 ? ENDS_CRLF : text[at] == '\r' ? ENDS_CR : ENDS_LF;
        found = found == ENDS_NONE || found == one ? one : ENDS_MIXED;
    });
    return found;
}

std::string withLineEnds(std::string_view text, int ends) {
    const std::string_view mark = ends == ENDS_CRLF ? "\r\n" : ends == ENDS_CR ? "\r" : "\n";
    std::string out;
    out.reserve(text.size());
    std::size_t from = 0;
    eachLineEnd(text, [&](std::size_t at, std::size_t length) {
        out.append(text.substr(from, at - from)).append(mark);
        from = at + length;
    });
    return out.append(text.substr(from));
}

void TextStore::setLineMarks(const std::vector<LineMark>& marks) {
    static_cast<void>(marks);
}

std::vector<LineMark> TextStore::lineMarks() const {
    return {};
}

std::string TextStore::range(int start, int length) const {
    const std::string all = text();
    const int from = std::clamp(start - 1, 0, static_cast<int>(all.size()));
    return all.substr(static_cast<std::size_t>(from), static_cast<std::size_t>(std::max(length, 0)));
}

int TextStore::lineEnds() const {
    return lineEndsOf(text());
}

// The caret and all marks stay with their lines.
bool TextStore::convertLineEnds(int ends, int most) {
    const std::string before = text(), after = withLineEnds(before, ends);
    if (after == before || (most > 0 && static_cast<int>(after.size()) > most)) return false;
    std::size_t seen = 0, now = 0;  // a place in the text before, and where that comes to stand
    const auto moved = [&](int place) {
        const auto at = static_cast<std::size_t>(place - 1);
        if (at < seen) seen = now = 0;
        now += withLineEnds(std::string_view(before).substr(seen, at - seen), ends).size();
        seen = at;
        return static_cast<int>(now) + 1;
    };
    const int caret = moved(selection().start);
    std::vector<Selection> places = marks();
    for (Selection& place : places) {
        const int start = moved(place.start), end = moved(place.start + place.length);
        place = {start, end - start};
    }
    const std::vector<LineMark> lines = lineMarks();
    select(1, length());
    replaceSelection(after);
    select(caret, 0);
    setMarks(places);
    setLineMarks(lines);
    return true;
}

// For stores that only know a selection.
void TextStore::replaceRange(int start, int length, std::string_view text) {
    const Selection before = selection();
    const auto moved = [&](int position) {
        if (position <= start) return position;
        const int size = static_cast<int>(text.size());
        return position >= start + length ? position - length + size : std::min(position, start + size);
    };
    select(start, length);
    replaceSelection(text);
    const int from = moved(before.start);
    select(from, moved(before.start + before.length) - from);
}

std::unique_ptr<TextStore> makePlainText() {
    return std::make_unique<PlainText>();
}

}  // namespace tarn::platform
