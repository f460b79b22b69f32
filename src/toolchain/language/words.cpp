// SPDX-License-Identifier: Apache-2.0
#include "toolchain/language/words.h"

#include "kernel/text/words.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <array>

namespace tarn::toolchain {
namespace {

struct Entry {
    std::string_view text;
    Word word;
};

// Those that the grammar knows.
constexpr auto Words = std::to_array<Entry>({
    {"adt", Word::Adt},
    {"and", Word::And},
    {"array", Word::Array},
    {"boolean", Word::Boolean},
    {"by", Word::By},
    {"callback", Word::Callback},
    {"case", Word::Case},
    {"class", Word::Class},
    {"const", Word::Const},
    {"desc", Word::Desc},
    {"div", Word::Div},
    {"downto", Word::Downto},
    {"each", Word::Each},
    {"else", Word::Else},
    {"elseif", Word::Elseif},
    {"end", Word::End},
    {"enum", Word::Enum},
    {"exit", Word::Exit},
    {"external", Word::External},
    {"false", Word::False},
    {"fixed", Word::Fixed},
    {"for", Word::For},
    {"from", Word::From},
    {"function", Word::Function},
    {"if", Word::If},
    {"in", Word::In},
    {"index", Word::Index},
    {"inout", Word::Inout},
    {"integer", Word::Integer},
    {"iterate", Word::Iterate},
    {"list", Word::List},
    {"loop", Word::Loop},
    {"me", Word::Me},
    {"mod", Word::Mod},
    {"not", Word::Not},
    {"of", Word::Of},
    {"onerror", Word::Onerror},
    {"or", Word::Or},
    {"out", Word::Out},
    {"postcond", Word::Postcond},
    {"precond", Word::Precond},
    {"private", Word::Private},
    {"public", Word::Public},
    {"real", Word::Real},
    {"record", Word::Record},
    {"return", Word::Return},
    {"select", Word::Select},
    {"set", Word::Set},
    {"string", Word::String},
    {"table", Word::Table},
    {"then", Word::Then},
    {"through", Word::Through},
    {"to", Word::To},
    {"true", Word::True},
    {"type", Word::Type},
    {"union", Word::Union},
    {"uses", Word::Uses},
    {"var", Word::Var},
    {"when", Word::When},
    {"where", Word::Where},
    {"while", Word::While},
});

constexpr bool sorted() {
    for (std::size_t i = 1; i < Words.size(); ++i)
        if (Words[i].text <= Words[i - 1].text) return false;
    return true;
}
static_assert(sorted(), "the look-up is a binary search");

constexpr bool allReserved() {
    for (const Entry& entry : Words)
        if (std::find(std::begin(ReservedWords), std::end(ReservedWords), entry.text) ==
            std::end(ReservedWords))
            return false;
    return true;
}
static_assert(allReserved(), "a name must not be a word of the grammar");

}  // namespace

Word wordOf(std::string_view text) {
    if (text.size() < 2 || text.size() > 8) return Word::None;
    const std::string folded = ascii::lowered(text);
    const auto found =
        std::lower_bound(Words.begin(), Words.end(), folded,
                         [](const Entry& entry, const std::string& key) { return entry.text < key; });
    if (found != Words.end() && found->text == folded) return found->word;
    return IsReservedWord(folded) ? Word::Later : Word::None;
}

std::string_view spelling(Word word) {
    if (word == Word::None || word == Word::Later) return {};
    for (const Entry& entry : Words)
        if (entry.word == word) return entry.text;
    return {};
}

}  // namespace tarn::toolchain
