// SPDX-License-Identifier: Apache-2.0
#include "toolchain/language/words.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <array>

namespace tarn::toolchain {
namespace {

struct Entry {
    std::string_view text;
    Word word;
};

constexpr auto Words = std::to_array<Entry>({
    {"adt", Word::Later},
    {"and", Word::And},
    {"array", Word::Later},
    {"asc", Word::Later},
    {"boolean", Word::Boolean},
    {"by", Word::By},
    {"call", Word::Later},
    {"callback", Word::Later},
    {"case", Word::Case},
    {"class", Word::Class},
    {"code", Word::Later},
    {"const", Word::Const},
    {"desc", Word::Later},
    {"div", Word::Div},
    {"downto", Word::Downto},
    {"each", Word::Later},
    {"else", Word::Else},
    {"elseif", Word::Elseif},
    {"end", Word::End},
    {"enum", Word::Later},
    {"exit", Word::Exit},
    {"external", Word::Later},
    {"false", Word::False},
    {"fixed", Word::Later},
    {"for", Word::For},
    {"from", Word::From},
    {"function", Word::Function},
    {"if", Word::If},
    {"in", Word::In},
    {"index", Word::Later},
    {"inout", Word::Inout},
    {"integer", Word::Integer},
    {"iterate", Word::Iterate},
    {"list", Word::Later},
    {"loop", Word::Loop},
    {"me", Word::Later},
    {"mod", Word::Mod},
    {"not", Word::Not},
    {"of", Word::Later},
    {"onerror", Word::Onerror},
    {"or", Word::Or},
    {"order", Word::Later},
    {"out", Word::Out},
    {"postcond", Word::Postcond},
    {"precond", Word::Precond},
    {"private", Word::Private},
    {"public", Word::Public},
    {"real", Word::Later},
    {"record", Word::Later},
    {"return", Word::Return},
    {"run", Word::Later},
    {"select", Word::Select},
    {"set", Word::Later},
    {"string", Word::String},
    {"table", Word::Later},
    {"then", Word::Then},
    {"through", Word::Later},
    {"to", Word::To},
    {"true", Word::True},
    {"type", Word::Type},
    {"union", Word::Later},
    {"uses", Word::Uses},
    {"var", Word::Var},
    {"when", Word::When},
    {"where", Word::Later},
    {"while", Word::While},
    {"with", Word::Later},
});

constexpr bool sorted() {
    for (std::size_t i = 1; i < Words.size(); ++i)
        if (Words[i].text <= Words[i - 1].text) return false;
    return true;
}
static_assert(sorted(), "the look-up is a binary search");

}  // namespace

Word wordOf(std::string_view text) {
    if (text.size() < 2 || text.size() > 8) return Word::None;
    const std::string folded = ascii::lowered(text);
    const auto found =
        std::lower_bound(Words.begin(), Words.end(), folded,
                         [](const Entry& entry, const std::string& key) { return entry.text < key; });
    return found != Words.end() && found->text == folded ? found->word : Word::None;
}

std::string_view spelling(Word word) {
    if (word == Word::None || word == Word::Later) return {};
    for (const Entry& entry : Words)
        if (entry.word == word) return entry.text;
    return {};
}

}  // namespace tarn::toolchain
