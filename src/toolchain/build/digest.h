// SPDX-License-Identifier: Apache-2.0
//
// Digests, by which the make tool knows what a result was made of, whatever the clocks said meanwhile.
//
// A compile notes in the class's symbol file the digests of the source that it read, of what it saw of other
// classes, and of the object that it wrote (docs/formats/sym.md). The object belongs to the record
// only if it has that digest; so neither a compile that was cut off nor two at once can leave an object that
// passes for another. What is made of several files (the program, the companion of resources) has a note of the
// same kind in the work folder.
//
// A digest has 64 bits and is no defence against forgery. Cost: 4 bytes a nanosecond.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarn::toolchain {

using Digest = std::uint64_t;

Digest digestOf(std::string_view bytes);
// Depends on the order of the two.
Digest digestOf(Digest first, Digest second);

// Of a source file, for a compile by these tools: its text, its path, which stands in the object, the names of its
// windows (language/windows.h), and the interface that compiled code calls.
Digest sourceDigest(const std::string& path, std::string_view text, std::string_view windows = {});

// What a class shows to those that use it. Comments, blanks, the bodies of its functions and its private functions do
// not count; all else does, since a public constant may be computed from a private one. Its windows are seen, too.
struct Heads {
    Digest digest = 0;
    // They may name something of the classes that this one uses, so that they mean something else when that changes.
    bool open = false;
};

// What the tokens of a class say without its being parsed. Where the grammar would see it otherwise, the record of its
// next compile puts it right.
struct Outline {
    Heads heads;
    std::string name;
    std::vector<std::string> uses;
    bool isMain = false;
};
// Cost: a tenth of parsing it.
Outline outlineOf(std::string_view text, std::string_view windows = {});

// What a compile sees of other classes: the heads of those that the class uses, and of those that a class with open
// heads among them uses, and so on. Classes are numbers here; `uses(n)` is a range of numbers.
template <typename Uses, typename PathOf, typename HeadsOf>
Digest reachOf(std::size_t first, std::size_t count, const Uses& uses, const PathOf& pathOf,
               const HeadsOf& heads);

// ---- the record of a compile ----

struct CompileRecord {
    Digest source = 0;
    Heads heads;
    Digest reach = 0;    // of the heads of other classes that the compile saw
    Digest object = 0;   // of the bytes of its object
    bool quick = false;  // the object is tcc's
    bool isMain = false;
    std::string name;  // of the class
    std::optional<std::vector<std::string>>
        uses;  // as in its Uses line; nothing if they are too many to be noted
};

// The line of the symbol file.
std::string recordLine(const CompileRecord& record);
// Nothing if the symbol file holds no record of this form. It is looked for in the last line.
std::optional<CompileRecord> findRecord(std::string_view symbolFile);

// ---- the note of what is made of several files ----

struct MakeNote {
    Digest inputs = 0, result = 0;
};
std::string noteText(const MakeNote& note);
std::optional<MakeNote> readNote(std::string_view text);

// ---- the rest of a template ----

Digest reachedDigest(const std::string& path, Digest heads);

template <typename Uses, typename PathOf, typename HeadsOf>
Digest reachOf(std::size_t first, std::size_t count, const Uses& uses, const PathOf& pathOf,
               const HeadsOf& heads) {
    Digest sum = 0;  // in any order
    std::vector<char> seen(count, 0);
    std::vector<std::size_t> list{first};
    seen[first] = 1;
    for (std::size_t i = 0; i < list.size(); ++i) {
        if (i > 0 && !heads(list[i]).open) continue;
        for (const std::size_t used : uses(list[i])) {
            if (seen[used] != 0) continue;
            seen[used] = 1;
            list.push_back(used);
            sum += reachedDigest(pathOf(used), heads(used).digest);
        }
    }
    return sum;
}

}  // namespace tarn::toolchain
