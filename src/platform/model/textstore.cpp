// SPDX-License-Identifier: Apache-2.0
//
// The plain text of an edit control, for windows without a view that has an editor of its own.
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
        marks_.clear();
        modified_ = false;
    }
    int length() const override { return static_cast<int>(text_.size()); }
    Selection selection() const override { return selection_; }
    void select(int start, int length) override {
        selection_.start = std::clamp(start, 1, this->length() + 1);
        selection_.length = std::clamp(length, 0, this->length() + 1 - selection_.start);
    }
    void replaceSelection(std::string_view text) override {
        moveMarks(static_cast<int>(text.size()));
        text_.replace(static_cast<std::size_t>(selection_.start - 1),
                      static_cast<std::size_t>(selection_.length), text);
        selection_ = {selection_.start + static_cast<int>(text.size()), 0};
        modified_ = true;
    }
    void setMarks(const std::vector<Selection>& places) override { marks_ = places; }
    std::vector<Selection> marks() const override { return marks_; }
    bool modified() const override { return modified_; }
    void setModified(bool modified) override { modified_ = modified; }

private:
    // What stands behind the selection moves with it; a mark of which a part goes is gone.
    void moveMarks(int size) {
        const int end = selection_.start + selection_.length;
        std::erase_if(marks_, [&](const Selection& mark) {
            return mark.start < end && mark.start + mark.length > selection_.start;
        });
        for (Selection& mark : marks_)
            if (mark.start >= end) mark.start += size - selection_.length;
    }

    std::string text_;
    std::vector<Selection> marks_;
    Selection selection_;
    bool modified_ = false;
};

}  // namespace

std::unique_ptr<TextStore> makePlainText() {
    return std::make_unique<PlainText>();
}

}  // namespace tarn::platform
