// SPDX-License-Identifier: Apache-2.0
//
// Sample text for demonstrations. The adjective is left out one time in three.
#include "library/settings/profstr.h"

#include "os/text/ascii.h"

#include <iterator>
#include <random>

MODULE("profstr", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

constexpr std::string_view Articles[] = {"the", "a"};

constexpr std::string_view Adjectives[] = {
    "avaricious", "bedraggled",     "carnivorous", "dopey",     "effervescent", "fat",
    "goodly",     "hairy",          "hidden",      "ingenious", "juicy",        "knowledgeable",
    "little",     "merciful",       "nimble",      "nocturnal", "obese",        "over-paid",
    "pedantic",   "quick",          "rapid",       "stripey",   "thrifty",      "undernourished",
    "virtuous",   "well-preserved", "xenophobic",  "yucky",     "zealous"};

constexpr std::string_view Animals[] = {
    "aardvark", "bandicoot",  "crocodile",   "dingo",    "emu",      "fruitbat",       "giraffe",
    "hippo",    "iguana",     "journalist",  "kangaroo", "lawyer",   "microbe",        "necromancer",
    "ostrich",  "programmer", "quokka",      "reptile",  "spaceman", "traffic warden", "unicorn",
    "vulture",  "wildebeest", "xanthaphobe", "yak",      "zebra"};

constexpr std::string_view Verbs[] = {"ate",
                                      "broke",
                                      "contemplated",
                                      "defoliated",
                                      "drooled over",
                                      "educated",
                                      "fumigated",
                                      "greatly annoyed",
                                      "helped",
                                      "irritated",
                                      "jinxed",
                                      "kept",
                                      "looked at",
                                      "made off with",
                                      "nibbled",
                                      "organized",
                                      "praised",
                                      "purlioned",
                                      "quickly escaped from",
                                      "ran away from",
                                      "sat on",
                                      "swallowed",
                                      "tripped over",
                                      "uselessly conversed with",
                                      "visited",
                                      "wished for",
                                      "xeroxed",
                                      "yodelled in",
                                      "zealously searched"};

constexpr std::string_view Things[] = {"alien artifact",
                                       "banana",
                                       "book",
                                       "computer",
                                       "doormat",
                                       "edible fungus",
                                       "fish",
                                       "granite obelisk",
                                       "herbaceous border",
                                       "insect",
                                       "juniper bush",
                                       "kiwi fruit",
                                       "lavatory brush",
                                       "mat",
                                       "noxious weed",
                                       "orange",
                                       "pineapple",
                                       "quickly-disappearing piglet",
                                       "rose bush",
                                       "shrubbery",
                                       "threadbare hearthrug",
                                       "toadstool",
                                       "turnip",
                                       "undiscovered treasure",
                                       "valuable manuscript",
                                       "watery soup",
                                       "xenophobic travel agent",
                                       "yacht",
                                       "yurt",
                                       "zoological specimen"};

unsigned systemRandom(unsigned bound) {
    static std::random_device device;
    return device() % bound;
}

RandomSource randomSource = systemRandom;

template <std::size_t N>
std::string_view draw(const std::string_view (&words)[N]) {
    return words[randomSource(static_cast<unsigned>(N)) % N];
}

bool isVowel(char c) {
    return std::string_view("aeiou").find(ascii::lower(c)) != std::string_view::npos;
}

// The article as it stands before a word that starts with `next`; other words unchanged.
std::string_view articleBefore(std::string_view word, char next) {
    if (!ascii::equal(word, "a") && !ascii::equal(word, "an")) return word;
    const bool raised = word.front() == 'A';
    if (isVowel(next)) return raised ? "An" : "an";
    return raised ? "A" : "a";
}

}  // namespace

RandomSource useRandomSource(RandomSource source) {
    const RandomSource before = randomSource;
    randomSource = source == nullptr ? systemRandom : source;
    return before;
}

std::string FIXINDEFINITEPART(std::string_view sentence) {
    FRAME(FIXINDEFINITEPART);
    std::string out;
    std::size_t done = 0;
    const int words = STRWORDCOUNT(sentence);
    for (int n = 1; n < words; ++n) {
        const std::size_t start = static_cast<std::size_t>(STRWORDPOS(sentence, n)) - 1;
        const std::size_t next = static_cast<std::size_t>(STRWORDPOS(sentence, n + 1)) - 1;
        const std::string word = STRWORD(sentence, n);
        out.append(sentence.substr(done, start - done));
        out.append(articleBefore(word, sentence[next]));
        done = start + word.size();
    }
    out.append(sentence.substr(done));
    return out;
}

std::string CREATEAUTOSENTENCE() {
    FRAME(CREATEAUTOSENTENCE);
    std::string text(draw(Articles));
    if (randomSource(3) != 0) ADDWORD(draw(Adjectives), " ", text);
    ADDWORD(draw(Animals), " ", text);
    ADDWORD(draw(Verbs), " ", text);
    ADDWORD(draw(Articles), " ", text);
    ADDWORD(draw(Things), " ", text);
    text = FIXINDEFINITEPART(text);
    text.front() = ascii::upper(text.front());
    return text + ".";
}

std::string CREATEAUTOTEXT(int length, std::string_view separator) {
    FRAME(CREATEAUTOTEXT);
    std::string text;
    while (static_cast<std::int64_t>(text.size()) < length) {
        const std::string sentence = CREATEAUTOSENTENCE();
        const int words = STRWORDCOUNT(sentence);
        for (int n = 1; n <= words; ++n) ADDWORD(STRWORD(sentence, n), separator, text);
    }
    return text;
}

}  // namespace tarn
