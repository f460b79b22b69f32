// SPDX-License-Identifier: Apache-2.0
//
// Dialogs and menus made at random: every type, any bytes in texts, names of every form.
#pragma once

#include "platform/resources/properties.h"
#include "platform/resources/resource.h"

#include <random>
#include <string>

namespace tarn::platform {

class DialogMaker {
public:
    explicit DialogMaker(unsigned seed) : random_(seed) {}

    int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }
    bool oneIn(int n) { return below(n) == 0; }

    // Any bytes but those that a path cannot hold if it is one; long ones are rare.
    std::string bytes(std::size_t longest, bool path) {
        static constexpr std::string_view pieces[] = {"\"", "\\", "\\n", "\\\\0", "//",
                                                      "=",  " ",  "\r",  "\t",    "END"};
        const std::size_t size =
            static_cast<std::size_t>(below(oneIn(8) ? static_cast<int>(longest) + 1 : 20));
        std::string text;
        while (text.size() < size) {
            const int kind = below(4);
            if (kind == 0)
                text += pieces[below(std::size(pieces))];
            else if (kind == 1)
                text += static_cast<char>(128 + below(128));
            else
                text += static_cast<char>(kind == 2 ? 'a' + below(26) : below(256));
            if (path && (text.back() == '\n' || text.back() == '\0')) text.back() = '/';
        }
        text.resize(size);
        return text;
    }

    std::string name(int number, bool item) {
        if (oneIn(5)) return "";
        if (!item && oneIn(10)) return oneIn(2) ? "-1" : std::to_string(below(400));
        if (oneIn(10)) return "twin";  // several may have one name
        return (oneIn(2) ? "Control" : "control_") + std::to_string(number);
    }

    // A property list in its normal form that fits an element of an object array.
    std::string list(const std::string& name, Type type) {
        std::size_t longest = 1000;
        std::string made;
        do {
            made = makePropertyList(name, type, values(type, longest));
            longest /= 2;
        } while (made.size() > 1024 && longest > 1);
        return made;
    }

    Type controlType() {
        return static_cast<Type>(static_cast<int>(Type::Label) +
                                 below(static_cast<int>(Type::Image) - static_cast<int>(Type::Label) + 1));
    }

    ObjectArray dialog(const std::string& named, const std::string& menu) {
        static constexpr Type types[] = {Type::Dialog, Type::Dialog, Type::Editwindow, Type::Richeditwindow};
        ObjectArray objects{};
        objects[0] = list(named, types[below(4)]);
        setMenu(objects[0], menu);
        const int count = howMany();
        for (int i = 1; i <= count; ++i)
            objects[static_cast<std::size_t>(i)] = list(name(i, false), controlType());
        return objects;
    }

    ObjectArray menu(const std::string& named) {
        ObjectArray objects{};
        objects[0] = list(named, Type::Menuitem);
        const int count = howMany();
        for (int i = 1; i <= count; ++i)
            objects[static_cast<std::size_t>(i)] = list(name(i, true), Type::Menuitem);
        return objects;
    }

private:
    int howMany() { return oneIn(6) ? MAX_CONTROLS - below(3) : below(oneIn(2) ? 6 : 40); }

    static void setMenu(std::string& object, const std::string& menu) {
        const std::size_t at = object.find("\nMENU=") + 6;
        object.replace(at, object.find('\n', at) - at, menu);
    }

    Properties values(Type type, std::size_t longest) {
        Properties properties;
        for (const PropertyRow& row : propertiesOf(type))
            if (row.name != "NAME" && row.name != "TYPEOF" && !oneIn(4))
                properties.emplace_back(row.name, value(row, longest));
        if (oneIn(6)) properties.emplace_back("ODD", bytes(60, false));
        if (oneIn(20)) properties.emplace_back("END", std::to_string(below(9)));
        return properties;
    }

    std::string value(const PropertyRow& row, std::size_t longest) {
        if (row.kind != ValueKind::Plain) return bytes(longest, row.kind == ValueKind::File);
        if (row.options.starts_with("INTEGER["))
            return std::to_string(below(900) - 50) + " " + std::to_string(below(900)) + " " +
                   std::to_string(below(99)) + " " + std::to_string(below(99));
        if (row.options.starts_with("STRING")) return oneIn(3) ? "Name" + std::to_string(below(9)) : "";
        if (row.options.starts_with("COLOUR")) return oneIn(2) ? "0x00FF80" : "-1";
        return std::to_string(below(row.options.starts_with("ENUM") ? 3 : 200));
    }

    std::mt19937 random_;
};

}  // namespace tarn::platform
