// SPDX-License-Identifier: Apache-2.0
//
// Fonts and colours. While something is drawn on the object they are those of the drawing, so the view does not
// hear of them.
#include "platform/operations/looks.h"

#include "platform/model/access_internal.h"

#include <algorithm>

namespace tarn::platform {

namespace {

template <class T>
Answer<T> fontPart(const Object& object, T Font::*part) {
    return ask<T>(object, [part](const Control& c) { return c.font.*part; });
}

template <class T>
Code setFontPart(const Object& object, T Font::*part, T value) {
    return tell(object, Property::Font,
                [&](Control& c) { return assign(c.font.*part, std::move(value)) && c.graph == nullptr; });
}

Code setColour(const Object& object, int Control::*which, int colour) {
    return tell(object, Property::Colour, [=](Control& c) {
        return assign(c.*which, colour < 0 ? -1 : colour & 0xFFFFFF) && c.graph == nullptr;
    });
}

}  // namespace

Answer<std::string> GetFontName(const Object& object) {
    return fontPart(object, &Font::name);
}
Code SetFontName(const Object& object, std::string_view name) {
    return setFontPart(object, &Font::name, std::string(name));
}
Answer<int> GetFontSize(const Object& object) {
    return fontPart(object, &Font::size);
}
Code SetFontSize(const Object& object, int points) {
    return setFontPart(object, &Font::size, std::max(points, 0));
}
Answer<bool> GetFontBold(const Object& object) {
    return fontPart(object, &Font::bold);
}
Code SetFontBold(const Object& object, bool bold) {
    return setFontPart(object, &Font::bold, bold);
}
Answer<bool> GetFontItalic(const Object& object) {
    return fontPart(object, &Font::italic);
}
Code SetFontItalic(const Object& object, bool italic) {
    return setFontPart(object, &Font::italic, italic);
}
Answer<int> GetForeColour(const Object& object) {
    return ask<int>(object, [](const Control& c) { return c.foreColour; });
}
Code SetForeColour(const Object& object, int colour) {
    return setColour(object, &Control::foreColour, colour);
}
Answer<int> GetBackColour(const Object& object) {
    return ask<int>(object, [](const Control& c) { return c.backColour; });
}
Code SetBackColour(const Object& object, int colour) {
    return setColour(object, &Control::backColour, colour);
}

}  // namespace tarn::platform
