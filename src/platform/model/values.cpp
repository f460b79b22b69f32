// SPDX-License-Identifier: Apache-2.0
//
// Captions, texts and values. A control that lacks the property answers with an empty value.
#include "platform/operations/values.h"

#include "platform/model/access_internal.h"
#include "platform/operations/drawing.h"
#include "platform/text.h"

#include <algorithm>

namespace tarn::platform {

namespace {

bool isDropList(const Control& c) {
    return c.type == Type::Combobox && c.comboStyle == 2;
}

std::string selectedRow(const Control& c) {
    return c.listIndex > 0 ? c.rows[static_cast<std::size_t>(c.listIndex - 1)].text : std::string();
}

std::string textOf(const Control& c) {
    if (isDropList(c)) return selectedRow(c);
    return c.text != nullptr ? c.text->text() : std::string();
}

// Selects the row that equals the text, with the case as it is or else without; none leaves the selection
// alone.
bool selectRowOf(Control& c, std::string_view text) {
    const auto find = [&](auto same) {
        const auto row =
            std::find_if(c.rows.begin(), c.rows.end(), [&](const Row& one) { return same(one.text, text); });
        return row == c.rows.end() ? 0 : static_cast<int>(row - c.rows.begin()) + 1;
    };
    int row = find([](std::string_view a, std::string_view b) { return a == b; });
    if (row == 0) row = find(sameText);
    if (row == 0 || row == c.listIndex) return false;
    setRow(c, row);
    return true;
}

bool setText(Control& c, std::string_view text) {
    if (isDropList(c)) return selectRowOf(c, text);
    if (c.text == nullptr) return false;
    c.text->setText(text);
    if (c.type == Type::Combobox) c.listIndex = 0;
    return true;
}

// Lets `change` change the text as the user would.
template <class Change>
Code edit(const Object& object, Change change) {
    Control* const control = findControl(object);
    if (control == nullptr) return missing(object);
    if (control->text == nullptr || isDropList(*control)) return Ok;
    change(*control->text);
    view().changed(*control, Property::Text);
    userChange(*control);
    return Ok;
}

}  // namespace

Answer<std::string> GetCaption(const Object& object) {
    return ask<std::string>(object, [](const Control& c) { return c.caption; });
}

Code SetCaption(const Object& object, std::string_view caption) {
    return tell(object, Property::Caption,
                [&](Control& c) { return assign(c.caption, std::string(caption)); });
}

Answer<std::string> GetText(const Object& object) {
    return ask<std::string>(object, textOf);
}

Code SetText(const Object& object, std::string_view text) {
    return tell(object, Property::Text, [&](Control& c) { return setText(c, text); });
}

Answer<int> GetTextLength(const Object& object) {
    return ask<int>(object, [](const Control& c) {
        if (c.text != nullptr && !isDropList(c)) return c.text->length();
        return static_cast<int>(textOf(c).size());
    });
}

Answer<std::string> GetTokens(const Object& object) {
    return ask<std::string>(object, [](const Control& c) { return c.tokens; });
}

Code SetTokens(const Object& object, std::string_view tokens) {
    return tell(object, Property::Tokens, [&](Control& c) {
        return isEditWindowType(c.type) && assign(c.tokens, std::string(tokens));
    });
}

Answer<std::string> GetSelText(const Object& object) {
    return ask<std::string>(object, [](const Control& c) {
        if (c.text == nullptr) return std::string();
        const Selection selection = c.text->selection();
        return c.text->text().substr(static_cast<std::size_t>(selection.start - 1),
                                     static_cast<std::size_t>(selection.length));
    });
}

Code SetSelText(const Object& object, std::string_view text) {
    return edit(object, [&](TextStore& store) { store.replaceSelection(text); });
}

Code ReplaceText(const Object& object, int start, int length, std::string_view text) {
    return edit(object, [&](TextStore& store) { store.replaceRange(start, length, text); });
}

bool CanUndo(const Object& object) {
    const Control* const control = findControl(object);
    return control != nullptr && control->text != nullptr && control->text->canUndo();
}

bool CanRedo(const Object& object) {
    const Control* const control = findControl(object);
    return control != nullptr && control->text != nullptr && control->text->canRedo();
}

Code Undo(const Object& object) {
    if (!CanUndo(object)) return findControl(object) == nullptr ? missing(object) : Ok;
    return edit(object, [](TextStore& store) { store.undo(); });
}

Code Redo(const Object& object) {
    if (!CanRedo(object)) return findControl(object) == nullptr ? missing(object) : Ok;
    return edit(object, [](TextStore& store) { store.redo(); });
}

Answer<std::string> GetStatus(const Object& object, StatusKind kind) {
    return ask<std::string>(
        object, [&](const Control& c) { return kind == StatusKind::Passes ? c.passing : c.status; });
}

Code SetStatus(const Object& object, std::string_view status, StatusKind kind) {
    if (kind == StatusKind::Passes)
        return tell(object, Property::Passing, [&](Control& c) {
            if (!isEditWindowType(c.type) || (status.empty() && c.passing.empty())) return false;
            c.passing = status;
            return true;  // a word that is said again is shown again
        });
    return tell(object, Property::Status, [&](Control& c) {
        return isEditWindowType(c.type) && assign(c.status, std::string(status));
    });
}

Answer<Selection> GetSelection(const Object& object) {
    return ask<Selection>(
        object, [](const Control& c) { return c.text == nullptr ? Selection() : c.text->selection(); });
}

Code SetSelection(const Object& object, int start, int length) {
    return tell(object, Property::Selection, [&](Control& c) {
        if (c.text != nullptr) c.text->select(start, length);
        return c.text != nullptr;
    });
}

Answer<int> GetValue(const Object& object) {
    return ask<int>(object, [](const Control& c) { return isMark(c.type) || isRange(c.type) ? c.value : 0; });
}

Code SetValue(const Object& object, int value) {
    return tell(object, Property::Value, [&](Control& c) {
        if (c.type == Type::Radiobutton) return setRadio(c, value != 0 ? 1 : 0), false;
        if (c.type == Type::Checkbox) return assign(c.value, value != 0 ? 1 : 0);
        return isRange(c.type) &&
               assign(c.value, std::clamp(value, c.minimum, std::max(c.minimum, c.maximum)));
    });
}

Answer<bool> GetChecked(const Object& object) {
    return ask<bool>(object, [](const Control& c) { return c.checked || (isMark(c.type) && c.value != 0); });
}

Code SetChecked(const Object& object, bool checked) {
    if (const Control* const control = findControl(object); control != nullptr && isMark(control->type))
        return SetValue(object, checked ? 1 : 0);
    return tell(object, Property::Checked,
                [&](Control& c) { return c.type == Type::Menuitem && assign(c.checked, checked); });
}

Answer<bool> GetModify(const Object& object) {
    return ask<bool>(object, [](const Control& c) { return c.text != nullptr && c.text->modified(); });
}

Code SetModify(const Object& object, bool modified) {
    return tell(object, Property::Modify, [&](Control& c) {
        if (c.text != nullptr) c.text->setModified(modified);
        return c.text != nullptr;
    });
}

Answer<bool> GetReadonly(const Object& object) {
    return ask<bool>(object, [](const Control& c) { return c.readonly; });
}

Answer<int> GetMaxLength(const Object& object) {
    return ask<int>(object, [](const Control& c) { return c.maxLength; });
}

Code SetMaxLength(const Object& object, int length) {
    return tell(object, Property::MaxLength,
                [&](Control& c) { return c.text != nullptr && assign(c.maxLength, std::max(length, 0)); });
}

Answer<int> GetPasswordChar(const Object& object) {
    return ask<int>(object, [](const Control& c) { return c.passwordChar; });
}

Code SetPasswordChar(const Object& object, int character) {
    return tell(object, Property::Password,
                [&](Control& c) { return c.type == Type::Edit && assign(c.passwordChar, character); });
}

Answer<std::string> GetCombotext(const Object& object) {
    return ask<std::string>(object,
                            [](const Control& c) { return c.type == Type::Combobox ? textOf(c) : ""; });
}

Code SetCombotext(const Object& object, std::string_view text) {
    return tell(object, Property::Text,
                [&](Control& c) { return c.type == Type::Combobox && setText(c, text); });
}

Answer<int> GetCombostyle(const Object& object) {
    return ask<int>(object, [](const Control& c) { return c.type == Type::Combobox ? c.comboStyle : 0; });
}

Answer<int> GetMin(const Object& object) {
    return ask<int>(object, [](const Control& c) { return isRange(c.type) ? c.minimum : 0; });
}

Code SetMin(const Object& object, int value) {
    return tell(object, Property::Range,
                [&](Control& c) { return isRange(c.type) && assign(c.minimum, value); });
}

Answer<int> GetMax(const Object& object) {
    return ask<int>(object, [](const Control& c) { return isRange(c.type) ? c.maximum : 0; });
}

Code SetMax(const Object& object, int value) {
    return tell(object, Property::Range,
                [&](Control& c) { return isRange(c.type) && assign(c.maximum, value); });
}

Answer<bool> GetEnabled(const Object& object) {
    return ask<bool>(object, [](const Control& c) { return c.enabled; });
}

Code SetEnabled(const Object& object, bool enabled) {
    return tell(object, Property::Enabled, [&](Control& c) { return assign(c.enabled, enabled); });
}

Answer<std::string> GetShortcut(const Object& object) {
    return ask<std::string>(object, [](const Control& c) { return shortcutName(c.shortcut); });
}

Code SetShortcut(const Object& object, std::string_view keys) {
    return tell(object, Property::Caption, [&](Control& c) {
        return c.type == Type::Menuitem && assign(c.shortcut, shortcutFromText(keys));
    });
}

Answer<int> GetMenulevel(const Object& object) {
    return ask<int>(object, [](const Control& c) { return c.level; });
}

Answer<std::string> GetHint(const Object& object) {
    return ask<std::string>(object, [](const Control& c) { return c.hint; });
}

Code SetHint(const Object& object, std::string_view hint) {
    return tell(object, Property::Hint, [&](Control& c) { return assign(c.hint, std::string(hint)); });
}

Answer<int> GetFlags(const Object& object) {
    return ask<int>(object, [](const Control& c) { return c.flags; });
}

Code SetFlags(const Object& object, int flags) {
    return tell(object, Property::Flags, [&](Control& c) {
        if (c.type == Type::Edit) return assign(c.flags, flags & KEYFIELD);
        if (!isEditWindowType(c.type) || !assign(c.flags, flags)) return false;
        c.readonly = (flags & READONLY) != 0;
        return true;
    });
}

Answer<int> GetBorderStyle(const Object& object) {
    return ask<int>(object, [](const Control& c) {
        return isWindowType(c.type) ? static_cast<const Window&>(c).borderStyle : c.border;
    });
}

Answer<std::string> GetPicture(const Object& object) {
    return ask<std::string>(object, [](const Control& c) { return c.picture; });
}

Code SetPicture(const Object& object, std::string_view picture) {
    return tell(object, Property::Picture,
                [&](Control& c) { return assign(c.picture, std::string(picture)); });
}

Code SetPicture(const Object& object, const Picture& picture) {
    return SetPicture(object, PictureName(picture));
}

}  // namespace tarn::platform
