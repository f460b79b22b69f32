// SPDX-License-Identifier: Apache-2.0
#include "kernel/values/objectarrays.h"

#include "kernel/values/arrays.h"
#include "kernel/values/strings.h"
#include "os/text/ascii.h"
#include "platform/resources/properties.h"

#include <string_view>
#include <vector>

namespace tarn {

namespace {

bool isObjectArray(const ArrayDescriptor* a) {
    if (!IsWellFormed(a) || KindOf(a) != KindArray || a->tag != KindString) return false;
    return ArrayDimensions(a) == 1 && a->bounds[0].lower == 0 && a->bounds[0].upper == MAX_CONTROLS &&
           a->size == (MAX_CONTROLS + 1) * KindSize[KindString];
}

std::string refusal(const char* parameter) {
    return std::string(parameter) + " parameter must be 1D string array [0..MAX_CONTROLS]";
}

// Up to a NUL, with one byte for each character.
std::string narrow(const String& s) {
    const std::int32_t length = s.get()->length;
    if (length < 1) return "";
    std::string text(static_cast<std::size_t>(length) + 1, '\0');
    StringToText(text.data(), length, s.get());
    return text.substr(0, text.find('\0'));
}

ObjectArray objectsOf(const ArrayDescriptor* a) {
    ObjectArray objects;
    String element;
    for (std::int32_t i = 0; i <= MAX_CONTROLS; ++i) {
        ArrayGet(a, i, element.get(), KindString);
        objects[static_cast<std::size_t>(i)] = narrow(element);
    }
    return objects;
}

// One line of a property list, and ways to tell it in fewer characters.
struct Line {
    platform::Type type;
    std::string_view name, value;
};

std::string unlessMissing(const Line& line) {
    const platform::PropertyRow* const row = platform::findProperty(line.type, line.name);
    const bool says = row == nullptr || line.value != platform::toListValue(row->kind, row->missing);
    return says ? std::string(line.name) + "=" + std::string(line.value) + "\n" : "";
}

std::string withoutQuotes(const Line& line) {
    std::string_view value = line.value;
    const platform::ValueKind kind = platform::kindOf(line.type, line.name);
    if (kind != platform::ValueKind::Plain && value.size() > 1 && value.front() == '"' &&
        value.back() == '"') {
        const std::string_view bare = value.substr(1, value.size() - 2);
        if (platform::fromListValue(kind, bare) == platform::fromListValue(kind, value)) value = bare;
    }
    return std::string(line.name) + "=" + std::string(value) + "\n";
}

// An object that is too long, as far as needed without the lines that tell what holds without them, and then
// without quotes, from the last line on. It means the same.
std::string shortened(std::string_view object, std::size_t room) {
    const platform::Type type = platform::parsePropertyList(object).type;
    std::size_t size = object.size();
    std::vector<std::string> lines;
    while (!object.empty()) lines.emplace_back(ascii::takeLine(object));
    for (const auto shorter : {unlessMissing, withoutQuotes}) {
        for (auto line = lines.rbegin(); line != lines.rend() && size > room; ++line) {
            const std::string_view text = std::string_view(*line).substr(0, line->find('\n'));
            const std::size_t equals = text.find('=');
            if (equals == std::string_view::npos) continue;
            std::string instead = shorter({type, text.substr(0, equals), text.substr(equals + 1)});
            size -= line->size() - instead.size();
            *line = std::move(instead);
        }
    }
    std::string result;
    for (const std::string& line : lines) result += line;
    return result;
}

// False if an element has no room for its object.
bool put(const ObjectArray& objects, ArrayDescriptor* a) {
    for (std::int32_t i = 0; i <= MAX_CONTROLS; ++i) {
        std::string object = objects[static_cast<std::size_t>(i)];
        const auto limit = ReadAt<StringDescriptor>(ArrayRef(a, i)).maxlength;
        if (const auto room = static_cast<std::size_t>(limit); limit != UNBOUNDED && object.size() > room) {
            object = shortened(object, room);
            if (object.size() > room) return false;
        }
        const String element(object);
        ArrayPut(a, i, element.get(), KindString);
    }
    return true;
}

}  // namespace

std::string ResourceRead(const std::string& file, const std::string& name, ArrayDescriptor* objects,
                         [[maybe_unused]] std::int32_t count, [[maybe_unused]] std::int32_t size) {
    if (!isObjectArray(objects)) return refusal("Buffer");
    ObjectArray read;
    std::string error = ResourceRead(file, name, read);
    if (error.empty() && !put(read, objects))
        error =
            CutResourceError("An object of '" + name + "' in '" + file + "' is too long for its element.");
    if (!error.empty()) put({}, objects);
    return error;
}

std::string ResourceWrite(const ArrayDescriptor* dialog, [[maybe_unused]] std::int32_t dialogCount,
                          [[maybe_unused]] std::int32_t dialogSize, const ArrayDescriptor* menu,
                          [[maybe_unused]] std::int32_t menuCount, [[maybe_unused]] std::int32_t menuSize,
                          const std::string& file) {
    if (!isObjectArray(dialog)) return refusal("DlgBuffer");
    if (!isObjectArray(menu)) return refusal("MenuBuffer");
    return ResourceWrite(objectsOf(dialog), objectsOf(menu), file);
}

}  // namespace tarn
