// SPDX-License-Identifier: Apache-2.0
#include "toolchain/output/shapes.h"

#include "toolchain/output/names.h"

namespace tarn::toolchain {
namespace {

std::string boundsText(const std::vector<Range>& bounds) {
    std::string text;
    for (const Range& range : bounds)
        text += (text.empty() ? "" : ",") + std::to_string(range.lower) + ":" + std::to_string(range.upper);
    return text.empty() ? text : "[" + text + "]";
}

std::string fieldType(const Type& type) {
    if (type.kind == Kind::String)
        return "string" + (type.length == Unbounded ? "" : "[" + std::to_string(type.length) + "]");
    if (type.kind == Kind::Set) return "set" + boundsText(type.bounds);
    const bool characters =
        type.kind == Kind::Array && type.dimensions == 1 && type.element->kind == Kind::Enum;
    if (characters) return "Tchars" + boundsText(type.bounds);
    return isScalar(type.kind) ? kindName(type.kind) : "adt";
}

std::string lengthOf(const Type* type) {
    return type->length == Unbounded ? "TARN_UNBOUNDED" : std::to_string(type->length);
}

std::string flag(bool value) {
    return value ? "1" : "0";
}

}  // namespace

std::string typeInformation(const Type& record) {
    std::string text;
    for (const Field& field : record.fields) text += field.name + " : " + fieldType(*field.type) + "\n";
    return text;
}

std::string Shapes::pointerTo(const Type* type) {
    const auto [place, isNew] = names_.emplace(type, std::string());
    if (isNew) {
        const std::string name = "p" + std::to_string(names_.size());
        names_[type] = name;
        make(name, type);
    }
    return "&" + names_[type];
}

std::string Shapes::initialise(const std::string& address, const Type* type) {
    if (type->kind == Kind::String) return "tarn_string_init(" + address + ", " + lengthOf(type) + ");";
    return "tarn_adt_init(" + address + ", " + pointerTo(type) + ", " + cKind(type->kind) + ");";
}

std::string Shapes::release() const {
    std::string text;
    for (auto type = order_.rbegin(); type != order_.rend(); ++type)
        text += "    tarn_adt_free(&" + names_.at(*type) + ", " + cKind((*type)->kind) + ");\n";
    return text;
}

// What it is made of is made before it, so the text of `construct` comes last.
void Shapes::make(const std::string& name, const Type* type) {
    const std::string text = construct(name, type);
    definitions_ += "static " + cType(type->kind) + " " + name + ";\n";
    setup_ += text;
    order_.push_back(type);
}

std::string Shapes::elementShape(const Type* element) {
    return isComposite(element->kind) ? pointerTo(element) : "0";
}

std::string Shapes::construct(const std::string& name, const Type* type) {
    const auto call = [&](const std::string& function, const std::string& arguments) {
        return "    " + function + "(&" + name + ", " + arguments + ");\n";
    };
    switch (type->kind) {
    case Kind::String: return call("tarn_string_init", lengthOf(type));
    case Kind::Record:
    case Kind::Union: return constructRecord(name, type);
    case Kind::Set:
        if (type->bounds.empty()) return call("tarn_set_init", "TARN_UNBOUNDED, TARN_UNBOUNDED");
        return call("tarn_set_init",
                    std::to_string(type->bounds[0].lower) + ", " + std::to_string(type->bounds[0].upper));
    case Kind::Array: {
        const std::string shape = cKind(type->element->kind) + ", ", element = elementShape(type->element);
        if (type->bounds.empty()) return call("tarn_array_init_dynamic", shape + element);
        std::string bounds;
        for (std::size_t i = 0; i < 3; ++i)
            bounds += (i == 0 ? "" : ", ") + (i < type->bounds.size()
                                                  ? std::to_string(type->bounds[i].lower) + ", " +
                                                        std::to_string(type->bounds[i].upper)
                                                  : "TARN_NO_DIMENSION, TARN_NO_DIMENSION");
        return "    { static const int32_t b[6] = {" + bounds + "};\n" +
               call("tarn_array_init", shape + "b, " + element) + "    }\n";
    }
    case Kind::List:
        return call("tarn_list_init", lengthOf(type) + ", " + elementShape(type->element) + ", " +
                                          cKind(type->element->kind) + ", " + flag(type->isExternal));
    default: return constructTable(name, type);
    }
}

std::string Shapes::constructRecord(const std::string& name, const Type* type) {
    std::string kinds;
    for (std::size_t i = 0; i < MaxFields; i += 2) {
        const auto kindAt = [&](std::size_t n) {
            return n < type->fields.size() ? static_cast<int>(type->fields[n].type->kind) : 0;
        };
        kinds += (i == 0 ? "" : ",") + std::to_string(kindAt(i) * 16 + kindAt(i + 1));
    }
    std::string text = "    { static const uint8_t kinds[24] = {" + kinds + "};\n    tarn_record_init(&" +
                       name + ", " + (type->kind == Kind::Record ? "14" : "15") + ", kinds); }\n";
    for (const Field& field : type->fields)
        if (isComposite(field.type->kind))
            text += "    if (" + name + ".data != 0) " +
                    initialise("(void *)quarn_field(&" + name + ", " + std::to_string(field.offset) + ")",
                               field.type) +
                    "\n";
    return text;
}

std::string Shapes::constructTable(const std::string& name, const Type* type) {
    std::string maps;
    for (std::size_t i = 0; i < MaxIndexes; ++i) {
        std::uint32_t map = 0;
        if (i < type->indexes.size()) {
            const auto& fields = type->indexes[i].fields;
            for (std::size_t n = 0; n < MaxKeyFields; ++n)
                map = map << 8U | (n < fields.size() ? static_cast<std::uint32_t>(fields[n]) : 0U);
        }
        maps += (i == 0 ? "" : ", ") + std::to_string(static_cast<std::int32_t>(map));
    }
    return "    { static const int32_t maps[5] = {" + maps + "};\n    tarn_table_init(&" + name + ", " +
           lengthOf(type) + ", " + elementShape(type->element) + ", maps, " +
           cString(typeInformation(*type->element)) + ", " + flag(type->isExternal) + "); }\n";
}

}  // namespace tarn::toolchain
