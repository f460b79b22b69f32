// SPDX-License-Identifier: Apache-2.0
//
// The windowing operations as modules call them: thin wrappers of platform/windowing.h that put a failure
// into the error cell and give the bare value. They hold no other logic. operations.h lists them.
#pragma once

#include "kernel/run/runtime.h"
#include "kernel/windows/operations.h"
#include "platform/windowing.h"

#include <type_traits>

namespace tarn {

using platform::BoxIcon;
using platform::CommTimeouts;
using platform::Desktop;
using platform::Font;
using platform::Object;
using platform::Picture;
using platform::PrintChoice;
using platform::Rect;
using platform::RegInfo;
using platform::Selection;
using platform::Sysclipboard;
using platform::Sysprinter;
using platform::Sysscreen;
using platform::TrackLimits;
using platform::Type;
using platform::WindowFunction;
using platform::constants::Unit;
using namespace platform::constants;

namespace detail {
inline void note(platform::Code code) {
    if (code != platform::Ok) SetError(code);
}
template <class T>
T bare(platform::Answer<T> answer) {
    note(answer.code);
    return std::move(answer.value);
}
template <class T>
T bare(T value) {
    return value;
}
// A `Result` of void stands for an operation that gives a code, or nothing.
template <class Result, class Call>
Result handOn(Call call) {
    if constexpr (!std::is_void_v<Result>)
        return bare(call());
    else if constexpr (std::is_void_v<decltype(call())>)
        call();
    else
        note(call());
}
}  // namespace detail

#define TARN_WRAP(result, name, symbol, parameters, arguments)                                               \
    inline result name parameters {                                                                          \
        return detail::handOn<result>([&] { return platform::name arguments; });                             \
    }
TARN_WINDOW_OPERATIONS(TARN_WRAP)
#undef TARN_WRAP

// What modules need beside the operations; none of it can fail.
using platform::ActiveWindow;
using platform::ApplicationResources;
using platform::CanRedo;
using platform::CanUndo;
using platform::commandText;
using platform::ControlElement;
using platform::DesktopInfo;
using platform::DestroyAllWindows;
using platform::FindControl;
using platform::FindHandle;
using platform::FindWindow;
using platform::IsTextKey;
using platform::OpenUrl;
using platform::PlaySound;
using platform::PostMessage;
using platform::QuitMainLoop;
using platform::RegisterWindow;
using platform::ScreenSize;
using platform::SetApplicationResources;
using platform::SetBusy;
using platform::SetHelpViewer;
using platform::SetTimer;
using platform::ShowToolProgress;
using platform::ToolStopPressed;
using platform::WaitEvents;
using platform::WindowClassName;

// Operations on the text of an edit window that programs of the language do not have.
inline void ReplaceText(const Object& object, int start, int length, std::string_view text) {
    detail::note(platform::ReplaceText(object, start, length, text));
}
inline void Undo(const Object& object) {
    detail::note(platform::Undo(object));
}
inline void Redo(const Object& object) {
    detail::note(platform::Redo(object));
}
inline std::string GetStatus(const Object& object, StatusKind kind = StatusKind::Stays) {
    return detail::bare(platform::GetStatus(object, kind));
}
inline void SetStatus(const Object& object, std::string_view status, StatusKind kind = StatusKind::Stays) {
    detail::note(platform::SetStatus(object, status, kind));
}

}  // namespace tarn
