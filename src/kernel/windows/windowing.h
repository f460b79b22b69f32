// SPDX-License-Identifier: Apache-2.0
//
// The windowing operations as modules call them: thin wrappers of platform/windowing.h that put a failure
// into the error cell and give the bare value. They hold no other logic.
#pragma once

#include "kernel/run/runtime.h"
#include "platform/windowing.h"

namespace tarn {

using platform::Bounds;
using platform::BoxIcon;
using platform::Font;
using platform::Object;
using platform::Rect;
using platform::Selection;
using platform::Type;
using platform::WindowFunction;
using platform::constants::Unit;
using namespace platform::constants;

namespace detail {
inline void check(platform::Code code) {
    if (code != platform::Ok) SetError(code);
}
template <class T>
T take(platform::Answer<T> answer) {
    check(answer.code);
    return std::move(answer.value);
}
}  // namespace detail

inline void Load(const Object& window) {
    detail::check(platform::Load(window));
}
inline void Show(const Object& window, bool modal) {
    detail::check(platform::Show(window, modal));
}
inline void Hide(const Object& window) {
    detail::check(platform::Hide(window));
}
inline void Unload(const Object& window) {
    detail::check(platform::Unload(window));
}
inline bool GetVisible(const Object& object) {
    return detail::take(platform::GetVisible(object));
}
inline void SetVisible(const Object& object, bool visible) {
    detail::check(platform::SetVisible(object, visible));
}
inline int GetWindowState(const Object& window) {
    return detail::take(platform::GetWindowState(window));
}
inline void SetWindowState(const Object& window, int state) {
    detail::check(platform::SetWindowState(window, state));
}
inline void Command(int windowHandle, int controlNumber, const std::string& text) {
    detail::check(platform::Command(windowHandle, controlNumber, text));
}
inline int GetHandle(const Object& object) {
    return detail::take(platform::GetHandle(object));
}
inline std::string GetName(const Object& object) {
    return detail::take(platform::GetName(object));
}
inline std::vector<Object> ControlList(const Object& window) {
    return detail::take(platform::ControlList(window));
}
inline std::string GetCaption(const Object& object) {
    return detail::take(platform::GetCaption(object));
}
inline void SetCaption(const Object& object, std::string_view caption) {
    detail::check(platform::SetCaption(object, caption));
}
inline std::string GetText(const Object& object) {
    return detail::take(platform::GetText(object));
}
inline void SetText(const Object& object, std::string_view text) {
    detail::check(platform::SetText(object, text));
}
inline int GetTextLength(const Object& object) {
    return detail::take(platform::GetTextLength(object));
}
inline std::string GetTokens(const Object& object) {
    return detail::take(platform::GetTokens(object));
}
inline void SetTokens(const Object& object, std::string_view tokens) {
    detail::check(platform::SetTokens(object, tokens));
}
inline std::string GetSelText(const Object& object) {
    return detail::take(platform::GetSelText(object));
}
inline void SetSelText(const Object& object, std::string_view text) {
    detail::check(platform::SetSelText(object, text));
}
inline Selection GetSelection(const Object& object) {
    return detail::take(platform::GetSelection(object));
}
inline void SetSelection(const Object& object, int start, int length) {
    detail::check(platform::SetSelection(object, start, length));
}
inline int GetValue(const Object& object) {
    return detail::take(platform::GetValue(object));
}
inline void SetValue(const Object& object, int value) {
    detail::check(platform::SetValue(object, value));
}
inline bool GetChecked(const Object& object) {
    return detail::take(platform::GetChecked(object));
}
inline void SetChecked(const Object& object, bool checked) {
    detail::check(platform::SetChecked(object, checked));
}
inline bool GetModify(const Object& object) {
    return detail::take(platform::GetModify(object));
}
inline void SetModify(const Object& object, bool modified) {
    detail::check(platform::SetModify(object, modified));
}
inline bool GetReadonly(const Object& object) {
    return detail::take(platform::GetReadonly(object));
}
inline int GetMaxLength(const Object& object) {
    return detail::take(platform::GetMaxLength(object));
}
inline void SetMaxLength(const Object& object, int length) {
    detail::check(platform::SetMaxLength(object, length));
}
inline int GetPasswordChar(const Object& object) {
    return detail::take(platform::GetPasswordChar(object));
}
inline void SetPasswordChar(const Object& object, int character) {
    detail::check(platform::SetPasswordChar(object, character));
}
inline std::string GetCombotext(const Object& object) {
    return detail::take(platform::GetCombotext(object));
}
inline void SetCombotext(const Object& object, std::string_view text) {
    detail::check(platform::SetCombotext(object, text));
}
inline int GetCombostyle(const Object& object) {
    return detail::take(platform::GetCombostyle(object));
}
inline int GetMin(const Object& object) {
    return detail::take(platform::GetMin(object));
}
inline void SetMin(const Object& object, int value) {
    detail::check(platform::SetMin(object, value));
}
inline int GetMax(const Object& object) {
    return detail::take(platform::GetMax(object));
}
inline void SetMax(const Object& object, int value) {
    detail::check(platform::SetMax(object, value));
}
inline bool GetEnabled(const Object& object) {
    return detail::take(platform::GetEnabled(object));
}
inline void SetEnabled(const Object& object, bool enabled) {
    detail::check(platform::SetEnabled(object, enabled));
}
inline int GetFlags(const Object& object) {
    return detail::take(platform::GetFlags(object));
}
inline void SetFlags(const Object& object, int flags) {
    detail::check(platform::SetFlags(object, flags));
}
inline int GetBorderStyle(const Object& window) {
    return detail::take(platform::GetBorderStyle(window));
}
inline std::string GetPicture(const Object& object) {
    return detail::take(platform::GetPicture(object));
}
inline void SetPicture(const Object& object, std::string_view picture) {
    detail::check(platform::SetPicture(object, picture));
}
inline int GetListCount(const Object& list) {
    return detail::take(platform::GetListCount(list));
}
inline int GetListIndex(const Object& list) {
    return detail::take(platform::GetListIndex(list));
}
inline void SetListIndex(const Object& list, int row) {
    detail::check(platform::SetListIndex(list, row));
}
inline std::string GetList(const Object& list, int row) {
    return detail::take(platform::GetList(list, row));
}
inline void SetList(const Object& list, int row, std::string_view text) {
    detail::check(platform::SetList(list, row, text));
}
inline void AddItem(const Object& list, std::string_view text, std::string_view picture = {}) {
    detail::check(platform::AddItem(list, text, picture));
}
inline void AddItem(const Object& list, int row, std::string_view text, std::string_view picture = {}) {
    detail::check(platform::AddItem(list, row, text, picture));
}
inline void RemoveItem(const Object& list, int row) {
    detail::check(platform::RemoveItem(list, row));
}
inline void Clear(const Object& list) {
    detail::check(platform::Clear(list));
}
inline std::string GetArrayValue(const Object& window, std::string_view name) {
    return detail::take(platform::GetArrayValue(window, name));
}
inline void SetArrayValue(const Object& window, std::string_view name, std::string_view value) {
    detail::check(platform::SetArrayValue(window, name, value));
}
inline Rect GetPosition(const Object& object, Unit unit) {
    return detail::take(platform::GetPosition(object, unit));
}
inline void SetPosition(const Object& object, Unit unit, const Rect& rect) {
    detail::check(platform::SetPosition(object, unit, rect));
}
inline Rect GetMinPosition(const Object& window) {
    return detail::take(platform::GetMinPosition(window));
}
inline void SetMinPosition(const Object& window, const Rect& rect) {
    detail::check(platform::SetMinPosition(window, rect));
}
inline Rect GetMaxPosition(const Object& window) {
    return detail::take(platform::GetMaxPosition(window));
}
inline void SetMaxPosition(const Object& window, const Rect& rect) {
    detail::check(platform::SetMaxPosition(window, rect));
}
inline int TextWidth(const Object& window, std::string_view text) {
    return detail::take(platform::TextWidth(window, text));
}
inline int TextHeight(const Object& window, std::string_view text) {
    return detail::take(platform::TextHeight(window, text));
}
inline Bounds ControlBounds(const Object& element) {
    return detail::take(platform::ControlBounds(element));
}
inline int ControlIndex(const Object& element) {
    return detail::take(platform::ControlIndex(element));
}
inline int Controlselectionpos(const Object& element) {
    return detail::take(platform::Controlselectionpos(element));
}
inline void AddMenuitem(const Object& after, std::string_view caption) {
    detail::check(platform::AddMenuitem(after, caption));
}
inline void RemoveMenuitem(const Object& item) {
    detail::check(platform::RemoveMenuitem(item));
}
inline Font GetFont(const Object& object) {
    return detail::take(platform::GetFont(object));
}
inline void SetFont(const Object& object, const Font& font) {
    detail::check(platform::SetFont(object, font));
}
inline std::int64_t DiskSpace(const std::string& folder) {
    return detail::take(platform::DiskSpace(folder));
}

using platform::ActiveWindow;
using platform::AppIcon;
using platform::ApplicationResources;
using platform::CloseSplash;
using platform::CommandOtherWindow;
using platform::commandText;
using platform::ControlElement;
using platform::DestroyAllWindows;
using platform::DoEvents;
using platform::FindControl;
using platform::FindHandle;
using platform::FindOtherWindow;
using platform::FindWindow;
using platform::GetDpi;
using platform::GetTypeof;
using platform::GetUserBreak;
using platform::InputBox;
using platform::IsLoaded;
using platform::IsModal;
using platform::ListBox;
using platform::MainLoop;
using platform::MsgBox;
using platform::MsgBoxEx;
using platform::OpenFileDialog;
using platform::OpenFolderDialog;
using platform::OpenUrl;
using platform::PlaySound;
using platform::QuitMainLoop;
using platform::RegisterWindow;
using platform::SaveAsDialog;
using platform::ScreenSize;
using platform::SetApplicationResources;
using platform::SetBusy;
using platform::SetTimer;
using platform::SetTrace;
using platform::SetUserBreak;
using platform::ShowSplash;
using platform::ShowToolProgress;
using platform::Sound;
using platform::SystemInfo;
using platform::ToolStopPressed;
using platform::WaitEvents;
using platform::WindowClassName;
using platform::WindowList;
inline std::string Load(const Object& window, const std::string& resourceFile, const std::string& name) {
    return platform::Load(window, resourceFile, name);
}

}  // namespace tarn
