// SPDX-License-Identifier: Apache-2.0
//
// Places and sizes, and measures of text.
#include "platform/operations/position.h"

#include "platform/model/access_internal.h"

#include <algorithm>

namespace tarn::platform {

namespace {

bool isSystem(Type type) {
    return type == Type::Screen || type == Type::Printer || type == Type::Clipboard;
}

Rect printable(const Control& printer) {
    const Paper paper = view().paper(printer.name);
    return {0, 0, paper.width, paper.height};
}

Rect inside(const Rect& frame, const Rect& extents) {
    return {frame.x + extents.x, frame.y + extents.y, std::max(0, frame.w - extents.w),
            std::max(0, frame.h - extents.h)};
}

// A size of the frame within the limits of its client area; a limit of 0 is none.
int within(int size, int extent, int minimum, int maximum) {
    if (maximum > 0) size = std::min(size, maximum + extent);
    return std::max({size, minimum > 0 ? minimum + extent : 0, 0});
}

Rect frameFor(const Window& window, Unit unit, Rect rect) {
    const Rect extents = view().frameExtents(window);
    if (unit == CLIENT_UNIT)
        rect = {rect.x - extents.x, rect.y - extents.y, rect.w + extents.w, rect.h + extents.h};
    rect.w = within(rect.w, extents.w, window.minimum_.w, window.maximum_.w);
    rect.h = within(rect.h, extents.h, window.minimum_.h, window.maximum_.h);
    return rect;
}

Answer<Rect> limit(const Object& object, Rect Window::*which) {
    const Window* const window = findWindow(object);
    return window == nullptr ? Answer<Rect>{{}, WindowNotLoaded} : Answer<Rect>{window->*which, Ok};
}

Code setLimit(const Object& object, Rect Window::*which, const Rect& rect) {
    Window* const window = findWindow(object);
    if (window == nullptr) return WindowNotLoaded;
    if (assign(window->*which, rect)) view().changed(*window, Property::MinMax);
    return Ok;
}

}  // namespace

namespace {

// What is given in the unit it was read in says nothing new.
void noteUnit(Window& window, Unit unit, const Rect& rect) {
    const Rect client = inside(window.position, view().frameExtents(window));
    const bool inner = unit == CLIENT_UNIT;
    window.clientWide = inner && (window.clientWide || rect.w != client.w);
    window.clientHigh = inner && (window.clientHigh || rect.h != client.h);
}

}  // namespace

Answer<Rect> GetPosition(const Object& object, Unit unit) {
    return ask<Rect>(object, [&](const Control& c) {
        if (c.type == Type::Screen) return view().screen();
        if (c.type == Type::Printer) return printable(c);
        const bool client = isWindowType(c.type) && unit == CLIENT_UNIT;
        return client ? inside(c.position, view().frameExtents(static_cast<const Window&>(c))) : c.position;
    });
}

Code SetPosition(const Object& object, Unit unit, const Rect& rect) {
    return tell(object, Property::Position, [&](Control& c) {
        if (isSystem(c.type)) return false;
        if (isWindowType(c.type)) noteUnit(static_cast<Window&>(c), unit, rect);
        return assign(c.position,
                      isWindowType(c.type) ? frameFor(static_cast<const Window&>(c), unit, rect) : rect);
    });
}

Answer<Rect> GetMinPosition(const Object& window) {
    return limit(window, &Window::minimum_);
}
Code SetMinPosition(const Object& window, const Rect& rect) {
    return setLimit(window, &Window::minimum_, rect);
}
Answer<Rect> GetMaxPosition(const Object& window) {
    return limit(window, &Window::maximum_);
}
Code SetMaxPosition(const Object& window, const Rect& rect) {
    return setLimit(window, &Window::maximum_, rect);
}

Rect ScreenSize() {
    return view().screen();
}
Desktop DesktopInfo() {
    return view().desktop();
}

Answer<int> TextWidth(const Object& object, std::string_view text) {
    return ask<int>(object, [&](const Control& c) { return view().textWidth(c, text); });
}

Answer<int> TextHeight(const Object& object, std::string_view text) {
    return ask<int>(object, [&](const Control& c) { return view().textHeight(c, text); });
}

Answer<int> WindowWidth(const Object& object) {
    const Answer<Rect> rect = GetPosition(object, WINDOW_UNIT);
    return {rect.value.w, rect.code};
}
Answer<int> WindowHeight(const Object& object) {
    const Answer<Rect> rect = GetPosition(object, WINDOW_UNIT);
    return {rect.value.h, rect.code};
}
Answer<int> GetPageWidth(const Object& object) {
    const Answer<Rect> rect = GetPosition(object, CLIENT_UNIT);
    return {rect.value.w, rect.code};
}
Answer<int> GetPageHeight(const Object& object) {
    const Answer<Rect> rect = GetPosition(object, CLIENT_UNIT);
    return {rect.value.h, rect.code};
}

Answer<int> GetDpiX(const Object& object) {
    return ask<int>(object, [](const Control& c) {
        return c.type == Type::Printer ? view().paper(c.name).dpiX : view().dpi();
    });
}
Answer<int> GetDpiY(const Object& object) {
    return ask<int>(object, [](const Control& c) {
        return c.type == Type::Printer ? view().paper(c.name).dpiY : view().dpi();
    });
}

}  // namespace tarn::platform
