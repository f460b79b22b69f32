// SPDX-License-Identifier: Apache-2.0
//
// Compiled resources (.rcx): what a program loads its windows and pictures from. One file holds what several
// resource files told, with menus put into their windows and every object numbered.
//
// All numbers have their least byte first; a text is its length (4 bytes) and its bytes.
//
//     offset  size  meaning
//     0       4     "TRCX"
//     4       4     version of the format, 1
//     8       4     size of the file
//     12      4     number of entries
//     16      4     number of symbols
//     20      4     offset of the data
//     24      8     checksum of all bytes from 32 on
//     32            entries: kind, name, line (texts), offset and size of its data (4 bytes each)
//                   symbols: name (text), number (4 bytes)
//                   the data
//
// The data of a window is its object, the number of its controls, those, the number of its menu items, those.
// An object is its type (1 byte), number (4 bytes), name, count of properties (2 bytes), and for each a name
// and a value. The data of a BITMAP is the bytes of its file, that of a VERSIONINFO its text; other kinds
// have none.
//
// Cost: opening is linear in the entries and checks the sum of all bytes; a window is found by its name and
// decoded in a pass over its data.
#pragma once

#include "platform/resources/properties.h"
#include "platform/resources/rctext.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::platform {

struct ObjectTemplate {
    Type type = Type::None;
    int number = 0;
    std::string name;
    Properties properties;
};

struct WindowTemplate {
    ObjectTemplate window;  // number 0
    std::vector<ObjectTemplate> controls, menu;
};

bool isCompiledResource(std::string_view bytes);

class CompiledResources {
public:
    CompiledResources() = default;
    CompiledResources(CompiledResources&&) = delete;  // entries point into the bytes
    std::string open(std::string bytes);  // an error text, empty on success; on failure it holds nothing
    [[nodiscard]] std::string info(const std::string& kind, const std::string& name) const;
    [[nodiscard]] bool window(std::string_view name,
                              WindowTemplate& result) const;  // false: none, or damaged
    [[nodiscard]] bool empty() const { return entries_.empty() && symbols_.empty(); }
    [[nodiscard]] const std::string_view* picture(std::string_view name) const;  // null if there is none
    [[nodiscard]] int symbol(std::string_view name) const;

private:
    void clear();
    struct Entry {
        std::string kind, name, line;
        std::string_view data;
    };
    const Entry* find(std::string_view kind, std::string_view name) const;

    std::string bytes_;
    std::vector<Entry> entries_;
    std::map<std::string, std::size_t, LessText> windows_, pictures_;
    std::map<std::string, int, LessText> symbols_;
};

// The window `name` of a text file, numbered, with its menu. A fault tells what is wrong; its text is empty
// if there is none.
RcFault makeTemplate(const RcFile& file, std::string_view name, WindowTemplate& result);
// The same with the menus of other files beside; `menu` may be null.
RcFault makeTemplate(const RcFile& file, const RcStatement& window, const RcFile* menuFile,
                     const RcStatement* menu, WindowTemplate& result);

// Parts of a compiled file, for the compiler.
std::string encodeWindow(const WindowTemplate& window);
struct CompiledEntry {
    std::string kind, name, line, data;
};
std::string encodeResources(const std::vector<CompiledEntry>& entries,
                            const std::map<std::string, int, LessText>& symbols);

// The line of a resource as ResourceInfo gives it; of a version block the text if `whole`.
std::string resourceLine(const RcFile& file, const RcStatement& statement, bool whole);

// The resources of the application, opened when first needed; empty ones if there are none.
const CompiledResources& applicationResources();

}  // namespace tarn::platform
