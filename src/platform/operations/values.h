// SPDX-License-Identifier: Apache-2.0
//
// Windowing operations: captions, texts and values. A control that lacks the property answers with an empty
// value and takes no new one, without an error. Cost: constant, but for the text itself.
#pragma once

#include "platform/object.h"

namespace tarn::platform {

// The caption of a printer is the name of the document that is printed next.
Answer<std::string> GetCaption(const Object& object);
Code SetCaption(const Object& object, std::string_view caption);
// The text of the clipboard is what Copy put there.
Answer<std::string> GetText(const Object& object);
Code SetText(const Object& object, std::string_view text);
Answer<int> GetTextLength(const Object& object);
Answer<std::string> GetTokens(const Object& object);
Code SetTokens(const Object& object, std::string_view tokens);
Answer<std::string> GetSelText(const Object& object);
// Replaces the selection, in one undo step, and sends CHANGE_EVENT as a user's edit does (SetText sends
// none).
Code SetSelText(const Object& object, std::string_view text);
// Replaces `length` bytes from `start` on in one undo step and sends CHANGE_EVENT; selection and caret stay with their
// text, and nothing is scrolled.
Code ReplaceText(const Object& object, int start, int length, std::string_view text);
// The steps of the user's and the program's edits; SetText empties them. Undo and redo send CHANGE_EVENT.
bool CanUndo(const Object& object);
bool CanRedo(const Object& object);
Code Undo(const Object& object);
Code Redo(const Object& object);
// What an edit window's status bar tells beside its own; empty: nothing. What stays is there until it is set anew; what
// passes stands beside it, for some seconds or until the user goes on, and is kept as it was set.
Answer<std::string> GetStatus(const Object& object, StatusKind kind = StatusKind::Stays);
Code SetStatus(const Object& object, std::string_view status, StatusKind kind = StatusKind::Stays);
Answer<Selection> GetSelection(const Object& object);
Code SetSelection(const Object& object, int start, int length);  // scrolls it into view
Answer<int> GetValue(const Object& object);  // check box, radio button, scroll and progress bar
Code SetValue(const Object& object, int value);
Answer<bool> GetChecked(const Object& object);
Code SetChecked(const Object& object, bool checked);
Answer<bool> GetModify(const Object& object);
Code SetModify(const Object& object, bool modified);
Answer<bool> GetReadonly(const Object& object);
Answer<int> GetMaxLength(const Object& object);
Code SetMaxLength(const Object& object, int length);
Answer<int> GetPasswordChar(const Object& object);
Code SetPasswordChar(const Object& object, int character);
Answer<std::string> GetCombotext(const Object& object);
Code SetCombotext(const Object& object, std::string_view text);
Answer<int> GetCombostyle(const Object& object);  // 0 simple, 1 drop-down, 2 drop-down list
Answer<int> GetMin(const Object& object);
Code SetMin(const Object& object, int value);
Answer<int> GetMax(const Object& object);
Code SetMax(const Object& object, int value);
Answer<bool> GetEnabled(const Object& object);
Code SetEnabled(const Object& object, bool enabled);
// The keys that pick a menu item, by their name: "Ctrl+Shift+S", "F9"; empty for none. A text that names no keys
// takes them away.
Answer<std::string> GetShortcut(const Object& object);
Code SetShortcut(const Object& object, std::string_view keys);
std::string ShortcutName(std::string_view keys);  // as GetShortcut tells them; empty if the text names none
// Whether a text with the focus keeps the keys from the menus, as "Ctrl+C" and "Home".
bool IsTextKey(std::string_view keys);
Answer<int> GetMenulevel(const Object& object);  // a menu item: 1 in the menu bar, 2 below it, ...; else 0
Answer<std::string> GetHint(const Object& object);
Code SetHint(const Object& object, std::string_view hint);
Answer<int> GetFlags(const Object& object);
Code SetFlags(const Object& object, int flags);
Answer<int> GetBorderStyle(const Object& object);  // a window: 0 none, 1 fixed, 2 sizable
// A picture is named by its resource name, its file, or what PictureName gives for a picture value.
Answer<std::string> GetPicture(const Object& object);
Code SetPicture(const Object& object, std::string_view picture);
Code SetPicture(const Object& object, const Picture& picture);

}  // namespace tarn::platform
