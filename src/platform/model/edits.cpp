// SPDX-License-Identifier: Apache-2.0
//
// What edit windows show around their text. The state stands here; views show it.
#include "platform/operations/edits.h"

#include "platform/model/access_internal.h"

#include <algorithm>

namespace tarn::platform {

namespace {

// Changes an edit window; other objects stay as they are.
template <class Change>
Code tellEdit(const Object& object, Property property, Change change) {
    return tell(object, property, [&](Control& c) { return isEditWindowType(c.type) && change(c); });
}

}  // namespace

Answer<std::string> GetTextRange(const Object& object, int start, int length) {
    return ask<std::string>(object, [&](const Control& c) {
        return c.text == nullptr ? std::string() : c.text->range(start, length);
    });
}

Answer<int> GetLooks(const Object& window) {
    return ask<int>(window, [](const Control& c) { return isEditWindowType(c.type) ? c.looks : 0; });
}

Code SetLooks(const Object& window, int looks) {
    return tellEdit(window, Property::Looks, [&](Control& c) { return assign(c.looks, looks); });
}

Answer<int> GetTabWidth(const Object& window) {
    return ask<int>(window, [](const Control& c) { return isEditWindowType(c.type) ? c.tabWidth : 0; });
}

Code SetTabWidth(const Object& window, int columns) {
    return tellEdit(window, Property::Looks,
                    [&](Control& c) { return assign(c.tabWidth, std::clamp(columns, 1, 32)); });
}

Answer<int> GetZoom(const Object& window) {
    return ask<int>(window, [](const Control& c) { return c.zoom; });
}

Code SetZoom(const Object& window, int points) {
    return tellEdit(window, Property::Looks,
                    [&](Control& c) { return assign(c.zoom, std::clamp(points, -8, 20)); });
}

Answer<int> GetLineEnds(const Object& window) {
    return ask<int>(window, [](const Control& c) {
        return isEditWindowType(c.type) && c.text != nullptr ? c.text->lineEnds() : ENDS_NONE;
    });
}

Code SetLineEnds(const Object& window, int ends) {
    Control* const control = findControl(window);
    if (control == nullptr) return missing(window);
    if (!isEditWindowType(control->type) || control->text == nullptr || control->readonly) return Ok;
    if (ends != ENDS_LF && ends != ENDS_CRLF && ends != ENDS_CR) return Ok;
    if (control->text->convertLineEnds(ends, control->maxLength)) userChange(*control);
    return Ok;
}

Answer<std::string> GetBlocks(const Object& window) {
    return ask<std::string>(window, [](const Control& c) { return c.blocks; });
}

Code SetBlocks(const Object& window, std::string_view rules) {
    return tellEdit(window, Property::Blocks,
                    [&](Control& c) { return assign(c.blocks, std::string(rules)); });
}

Code FoldAll(const Object& window, bool folded) {
    return tellEdit(window, Property::Folded, [&](Control& c) {
        c.folded = folded;
        return true;
    });
}

Code ShowChoices(const Object& window, std::string_view rows, int typed) {
    return tellEdit(window, Property::Choices, [&](Control& c) {
        c.choices = rows;
        c.typed = std::max(typed, 0);
        return true;
    });
}

Answer<std::string> GetChoices(const Object& window) {
    return ask<std::string>(window, [](const Control& c) { return c.choices; });
}

Code ShowCallTip(const Object& window, int position, std::string_view text, int markStart, int markLength) {
    return tellEdit(window, Property::CallTip, [&](Control& c) {
        c.callTip = text;
        c.tipPlace = position;
        c.tipMark = {markStart, markLength};
        return true;
    });
}

Answer<std::string> GetCallTip(const Object& window) {
    return ask<std::string>(window, [](const Control& c) { return c.callTip; });
}

}  // namespace tarn::platform
