// SPDX-License-Identifier: Apache-2.0
#include "platform/resources/rcmatch.h"

#include <algorithm>
#include <map>

namespace tarn::platform {

namespace {

constexpr std::size_t mostAligned = 4096;

// What an object is known by. Equal texts have equal numbers, and 0 is the empty one.
struct Trait {
    Type type = Type::None;
    int name = 0;
    int content = 0;   // all but the name
    int position = 0;  // of a menu item 0: its level says little
    int text = 0;      // what the user sees of it
    int rest = 0;      // all but the name and what the user sees
};

class Traits {
public:
    Trait of(std::string_view name, Type type, const Properties& properties);

private:
    int number(std::string text) {
        if (text.empty()) return 0;
        return numbers_.emplace(std::move(text), static_cast<int>(numbers_.size()) + 1).first->second;
    }
    std::map<std::string, int> numbers_;
};

constexpr std::string_view seenProperties[] = {"CAPTION", "TEXT", "PICTURE", "ROWS"};

bool isSeen(std::string_view name) {
    return std::find(std::begin(seenProperties), std::end(seenProperties), name) != std::end(seenProperties);
}

Trait Traits::of(std::string_view name, Type type, const Properties& properties) {
    Trait trait{type, number(upper(name)), 0, 0, 0};
    Properties sorted = properties;
    std::sort(sorted.begin(), sorted.end());
    trait.content = number("\n" + makePropertyList("", type, sorted));
    std::erase_if(sorted, [](const auto& property) { return isSeen(property.first); });
    trait.rest = number("\r" + makePropertyList("", type, sorted));
    if (type != Type::Menuitem)
        trait.position = number("\t" + std::string(valueOf(properties, type, "POSITION")));
    for (const std::string_view seen : seenProperties)
        if (trait.text == 0) trait.text = number(std::string(valueOf(properties, type, seen)));
    return trait;
}

constexpr int nothing = 0, unlikely = 6, likely = 12, known = 20, sameContent = 60, settled = 1000;

// How much speaks for it that one is the other, where their names do not.
int likeness(const Trait& a, const Trait& b) {
    const bool position = a.position == b.position && a.position != 0, text = a.text == b.text && a.text != 0;
    if (a.name == 0 && b.name == 0 && a.content == b.content) return sameContent;
    if (a.type != b.type)
        return a.name == 0 && b.name == 0 && position && a.text == b.text ? likely : nothing;
    const int more = (position ? 5 : 0) + (text ? 5 : 0);
    if (more > 0) return known + more;
    return a.name == 0 && b.name == 0 && ((a.text == 0) == (b.text == 0) || a.rest == b.rest) ? unlikely
                                                                                              : nothing;
}

int likenessOfNamesakes(const Trait& a, const Trait& b) {
    if (a.type == b.type && a.content == b.content) return 4;
    if (a.type == b.type && (a.position == b.position || a.text == b.text)) return 3;
    return a.type == b.type ? 2 : 1;
}

class Matcher {
public:
    Matcher(const std::vector<RcObject>& blocks, const std::vector<ParsedList>& wanted);
    void ends();
    void namesakes();
    void align(int least);
    void anywhere(int least);
    [[nodiscard]] int partner(std::size_t wanted) const { return partner_[wanted]; }

private:
    static constexpr int none = -1;
    [[nodiscard]] bool settledPair(std::size_t b, std::size_t w) const {
        return partner_[w] == static_cast<int>(b);
    }
    [[nodiscard]] bool open(std::size_t b, std::size_t w) const { return partner_[w] == none && !taken_[b]; }
    [[nodiscard]] int worth(std::size_t b, std::size_t w, int least) const;
    void settle(std::size_t b, std::size_t w) {
        partner_[w] = static_cast<int>(b);
        taken_[b] = true;
    }

    std::vector<Trait> blocks_, wanted_;
    std::vector<int> partner_;
    std::vector<bool> taken_;
};

Matcher::Matcher(const std::vector<RcObject>& blocks, const std::vector<ParsedList>& wanted)
    : partner_(wanted.size(), none), taken_(blocks.size()) {
    Traits traits;
    blocks_.reserve(blocks.size());
    for (const RcObject& block : blocks)
        blocks_.push_back(traits.of(block.givenName(), block.type, block.values()));
    for (const ParsedList& list : wanted) wanted_.push_back(traits.of(list.name, list.type, list.properties));
}

// What stands unchanged in front of the first change, and behind the last: so among equal objects the one that
// changes keeps its own.
void Matcher::ends() {
    const auto same = [&](std::size_t b, std::size_t w) {
        const Trait &block = blocks_[b], &wanted = wanted_[w];
        return block.type == wanted.type && block.name == wanted.name && block.content == wanted.content;
    };
    std::size_t b = blocks_.size(), w = wanted_.size(), front = 0;
    for (; front < std::min(b, w) && same(front, front); ++front) settle(front, front);
    while (b > front && w > front && same(b - 1, w - 1)) settle(--b, --w);
}

// Where several have one name, the most alike are each other.
void Matcher::namesakes() {
    std::map<int, std::vector<std::size_t>> named;
    for (std::size_t b = 0; b < blocks_.size(); ++b)
        if (blocks_[b].name != 0) named[blocks_[b].name].push_back(b);
    for (int least = 4; least > 0; --least)
        for (std::size_t w = 0; w < wanted_.size(); ++w) {
            const auto place = named.find(wanted_[w].name);
            if (place == named.end() || partner_[w] != none) continue;
            for (const std::size_t b : place->second)
                if (open(b, w) && likenessOfNamesakes(blocks_[b], wanted_[w]) >= least) {
                    settle(b, w);
                    break;
                }
        }
}

int Matcher::worth(std::size_t b, std::size_t w, int least) const {
    if (settledPair(b, w)) return settled;
    if (!open(b, w)) return nothing;
    const int worth = likeness(blocks_[b], wanted_[w]);
    return worth >= least ? worth : nothing;
}

// Of all ways to pair them without changing their order, the one with the most likeness.
void Matcher::align(int least) {
    enum Way : char { Block, Wanted, Both };
    const std::size_t rows = std::min(blocks_.size(), mostAligned), columns = wanted_.size();
    std::vector<char> ways((rows + 1) * (columns + 1), Block);
    std::vector<int> above(columns + 1), row(columns + 1);
    for (std::size_t b = 1; b <= rows; ++b) {
        for (std::size_t w = 1; w <= columns; ++w) {
            char& way = ways[b * (columns + 1) + w];
            const int pair = worth(b - 1, w - 1, least);
            row[w] = above[w];
            if (row[w - 1] > row[w]) row[w] = row[w - 1], way = Wanted;
            if (pair > 0 && above[w - 1] + pair > row[w]) row[w] = above[w - 1] + pair, way = Both;
        }
        std::swap(above, row);
    }
    for (std::size_t b = rows, w = columns; b > 0 && w > 0;) {
        const char way = ways[b * (columns + 1) + w];
        if (way == Both) settle(b - 1, w - 1);
        if (way != Wanted) --b;
        if (way != Block) --w;
    }
}

// What is left, wherever it stands now.
void Matcher::anywhere(int least) {
    for (std::size_t w = 0; w < wanted_.size(); ++w)
        for (std::size_t b = 0; b < std::min(blocks_.size(), mostAligned); ++b)
            if (open(b, w) && worth(b, w, least) > 0) settle(b, w);
}

}  // namespace

std::vector<const RcObject*> matchObjects(const std::vector<RcObject>& blocks,
                                          const std::vector<ParsedList>& wanted) {
    Matcher matcher(blocks, wanted);
    matcher.ends();
    matcher.namesakes();
    matcher.align(sameContent);
    matcher.anywhere(sameContent);
    matcher.align(unlikely);
    matcher.anywhere(known);
    std::vector<const RcObject*> result(wanted.size());
    for (std::size_t w = 0; w < wanted.size(); ++w)
        if (const int b = matcher.partner(w); b >= 0) result[w] = &blocks[static_cast<std::size_t>(b)];
    return result;
}

}  // namespace tarn::platform
