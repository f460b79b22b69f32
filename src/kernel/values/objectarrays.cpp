// SPDX-License-Identifier: Apache-2.0
#include "kernel/values/objectarrays.h"

#include "kernel/values/arrays.h"
#include "kernel/values/strings.h"

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

// False if an element has no room for its object.
bool put(const ObjectArray& objects, ArrayDescriptor* a) {
    for (std::int32_t i = 0; i <= MAX_CONTROLS; ++i) {
        const std::string& object = objects[static_cast<std::size_t>(i)];
        const auto room = ReadAt<StringDescriptor>(ArrayRef(a, i)).maxlength;
        if (room != UNBOUNDED && object.size() > static_cast<std::size_t>(room)) return false;
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
