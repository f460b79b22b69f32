// SPDX-License-Identifier: Apache-2.0
//
// The plain text of an edit control, for windows without a view that has an editor of its own; and what every text
// store can do by going through its text.
#include "platform/model/model.h"

#include <algorithm>

namespace tarn::platform {

namespace {

class PlainText : public TextStore {
public:
    std::string text() const override { return text_; }
    void setText(std::string_view text) override {
        text_ = text;
        selection_ = {};
        modified_ = false;
    }
    int length() const override { return static_cast<int>(text_.size()); }
    Selection selection() const override { return selection_; }
    void select(int start, int length) override {
        selection_.start = std::clamp(start, 1, this->length() + 1);
        selection_.length = std::clamp(length, 0, this->length() + 1 - selection_.start);
    }
    void replaceSelection(std::string_view text) override {
        text_.replace(static_cast<std::size_t>(selection_.start - 1),
                      static_cast<std::size_t>(selection_.length), text);
        selection_ = {selection_.start + static_cast<int>(text.size()), 0};
        modified_ = true;
    }
    bool modified() const override { return modified_; }
    void setModified(bool modified) override { modified_ = modified; }

private:
    std::string text_;
    Selection selection_;
    bool modified_ = false;
};

// Calls `end` with the place and the length of each line end.
template <class End>
void eachLineEnd(std::string_view text, End end) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '\r' && text[at] != '\n') continue;
        const std::size_t length = text.substr(at, 2) == "\r\n" ? 2 : 1;
        end(at, length);
        at += length - 1;
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

std::string TextStore::range(int start, int length) const {
    const std::string all = text();
    const int from = std::clamp(start - 1, 0, static_cast<int>(all.size()));
    return all.substr(static_cast<std::size_t>(from), static_cast<std::size_t>(std::max(length, 0)));
}

int TextStore::lineEnds() const {
    return lineEndsOf(text());
}

// The caret stays in its line.
bool TextStore::convertLineEnds(int ends, int most) {
    const std::string before = text(), after = withLineEnds(before, ends);
    if (after == before || (most > 0 && static_cast<int>(after.size()) > most)) return false;
    const auto caret = static_cast<std::size_t>(selection().start - 1);
    const auto place = withLineEnds(std::string_view(before).substr(0, caret), ends).size();
    select(1, length());
    replaceSelection(after);
    select(static_cast<int>(place) + 1, 0);
    return true;
}

std::unique_ptr<TextStore> makePlainText() {
    return std::make_unique<PlainText>();
}

}  // namespace tarn::platform
