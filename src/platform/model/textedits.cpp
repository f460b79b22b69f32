// SPDX-License-Identifier: Apache-2.0
//
// Edits and marks of many places. A store that has no way of its own takes all edits as one, from the first place to
// the last.
#include "platform/operations/textedits.h"

#include "platform/model/access_internal.h"
#include "platform/model/view.h"

#include <algorithm>

namespace tarn::platform {

namespace {

// The edits that can be carried out on a text of that length.
std::vector<TextEdit> sound(const std::vector<TextEdit>& edits, int length) {
    std::vector<TextEdit> left;
    left.reserve(edits.size());
    int free = 1;
    for (const TextEdit& edit : edits) {
        if (edit.start < free || edit.start > length + 1) continue;
        left.push_back(edit);
        left.back().length = std::clamp(edit.length, 0, length + 1 - edit.start);
        free = edit.start + left.back().length;
    }
    return left;
}

}  // namespace

void TextStore::replaceParts(const std::vector<TextEdit>& edits) {
    const std::string before = text();
    const int first = edits.front().start;
    std::string middle;
    int at = first;
    for (const TextEdit& edit : edits) {
        middle.append(before, static_cast<std::size_t>(at - 1), static_cast<std::size_t>(edit.start - at));
        middle += edit.text;
        at = edit.start + edit.length;
    }
    select(first, at - first);
    replaceSelection(middle);
}

Code ReplaceParts(const Object& object, const std::vector<TextEdit>& edits) {
    Control* const control = findControl(object);
    if (control == nullptr) return missing(object);
    if (control->text == nullptr) return Ok;
    const std::vector<TextEdit> possible = sound(edits, control->text->length());
    if (possible.empty()) return Ok;
    control->text->replaceParts(possible);
    view().changed(*control, Property::Text);
    userChange(*control);
    return Ok;
}

Code SetMarks(const Object& object, const std::vector<Selection>& places) {
    Control* const control = findControl(object);
    if (control == nullptr) return missing(object);
    if (control->text != nullptr) control->text->setMarks(places);
    return Ok;
}

Code SetFolds(const Object& object, const std::vector<int>& lines) {
    Control* const control = findControl(object);
    if (control == nullptr) return missing(object);
    if (control->text != nullptr) control->text->setFolds(lines);
    return Ok;
}

Answer<std::vector<int>> GetFolds(const Object& object) {
    return ask<std::vector<int>>(object, [](const Control& c) {
        return c.text == nullptr ? std::vector<int>() : c.text->folds();
    });
}

Answer<std::vector<Selection>> GetMarks(const Object& object) {
    return ask<std::vector<Selection>>(object, [](const Control& c) {
        return c.text == nullptr ? std::vector<Selection>() : c.text->marks();
    });
}

}  // namespace tarn::platform
