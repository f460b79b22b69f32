// SPDX-License-Identifier: Apache-2.0
//
// The source scan: the functions, and where asked for the constants, types and event handlers, of a class
// text.
//
// An item is known by the first words of its line. It runs to the line before the next item, before variables
// of the class or "End class", or to the end of the text. The handlers inside a callback (lines "case
// xxx_event =>") do not end their function: each runs to the next handler or to the end of the function.
// Cost: one pass over the lines; only the first few words of each are read.
#include "library/source/symbols.h"

#include "library/source/symbols_text_internal.h"
#include "library/system/system.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <iterator>
#include <vector>

MODULE("symbols", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

enum ScanFlag : int {
    ModeMask = 15,
    WithParentheses = 1024,
    WithLines = 2048,
    WithDottedNames = 4096,
    WithDeclarations = 8192,
    WithBlanks = 16384,
};

using detail::Item;
using detail::ItemKind;

// Words from the start of a line, one at a time.
class LineWords {
public:
    explicit LineWords(std::string_view line) : line_(line) {}
    std::string next() { return NextWord(line_, position_); }
    std::string upper() { return STRUPPER(next()); }
    [[nodiscard]] std::size_t read() const { return position_ - 1; }  // characters

private:
    std::string_view line_;
    std::size_t position_ = 1;
};

bool isName(std::string_view word) {
    return !word.empty() && ascii::isLetter(word[0]);
}

class Scan {
public:
    std::vector<Item> run(std::string_view text) {
        while (!text.empty() && !ended_) {
            ++line_;
            readLine(ascii::withoutLineEnd(ascii::takeLine(text)));
        }
        endItem(ended_ ? line_ - 1 : line_);
        return std::move(items_);
    }

private:
    void readLine(std::string_view line) {
        LineWords words(line);
        std::string word = words.upper();
        if (word == "END") {
            ended_ = words.upper() == "CLASS";
            return;
        }
        if (word == "CASE") {
            readHandler(words);
            return;
        }
        const bool scoped = word == "PUBLIC" || word == "PRIVATE";
        if (scoped) word = words.upper();
        const bool callback = word == "CALLBACK";
        if (callback) word = words.upper();
        if (word == "FUNCTION")
            begin(ItemKind::Function, words, callback);
        else if (!callback && (word == "CONST" || word == "TYPE"))
            begin(ItemKind::Declaration, words, false);
        else if (scoped && !callback && word == "VAR")
            endItems();
    }

    void begin(ItemKind kind, LineWords& words, bool callback) {
        endItems();
        const std::string name = words.next();
        callback_ = callback;
        if (!isName(name)) return;  // nothing to list, but what stood above it has ended
        item_ = items_.size();
        items_.push_back({kind, name, line_, line_, words.read() - name.size(), {}});
    }

    // In front of this line.
    void endItems() {
        endItem(line_ - 1);
        item_ = handler_ = None;
        callback_ = false;
    }

    void readHandler(LineWords& words) {
        if (!callback_ || item_ == None) return;
        const std::string event = words.next();
        constexpr std::string_view Suffix = "_event";
        if (event.size() <= Suffix.size() ||
            !STREQUAL(STRRIGHT(event, static_cast<int>(Suffix.size())), Suffix))
            return;
        if (words.next() != "=>") return;
        if (handler_ != None) items_[handler_].last = line_ - 1;
        handler_ = items_.size();
        items_.push_back({ItemKind::Handler, items_[item_].name, line_, line_, 0, event});
    }

    void endItem(int last) {
        for (const std::size_t i : {item_, handler_})
            if (i != None) items_[i].last = last;
    }

    static constexpr std::size_t None = static_cast<std::size_t>(-1);
    std::vector<Item> items_;
    std::size_t item_ = None, handler_ = None;  // the ones that run now
    int line_ = 0;
    bool callback_ = false, ended_ = false;
};

bool isListed(const Item& item, int flags) {
    switch (item.kind) {
    case ItemKind::Declaration: return (flags & WithDeclarations) != 0;
    case ItemKind::Handler: return (flags & WithDottedNames) != 0;
    case ItemKind::Function: break;
    }
    return true;
}

std::string listing(const Item& item, int flags) {
    std::string out = (flags & WithBlanks) != 0 ? "   " : "";
    out += item.name;
    if ((flags & WithParentheses) != 0) out += "()";
    if (item.kind == ItemKind::Handler) out.append(".").append(item.event);
    if ((flags & WithLines) != 0) out.append(" ").append(STR(item.first)).append(" ").append(STR(item.last));
    return out + "\n";
}

}  // namespace

std::vector<detail::Item> detail::scanItems(std::string_view text) {
    return Scan().run(text);
}

bool detail::endsClass(std::string_view line) {
    LineWords words(line);
    return words.upper() == "END" && words.upper() == "CLASS";
}

std::string SYMSCANSOURCE(const std::string& source, int flags) {
    FRAME(SYMSCANSOURCE);
    const std::string text = detail::loadSource(flags & ModeMask, source);
    std::string out;
    for (const Item& item : detail::scanItems(text))
        if (isListed(item, flags)) out += listing(item, flags);
    return out;
}

bool ISMAINCLASS(const std::string& file) {
    FRAME(ISMAINCLASS);
    if (!STREQUAL(FILEGETEXT(file), ".cls")) return false;
    STAMP();
    return STRFIND("\nmain()\n", "\n" + SYMSCANSOURCE(file, 1 | WithParentheses)) != 0;
}

}  // namespace tarn
