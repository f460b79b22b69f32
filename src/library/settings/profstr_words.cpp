// SPDX-License-Identifier: Apache-2.0
//
// Words and tokens of a text. None of these functions can fail or calls out, so they have no frames.
// Cost: one pass over the text up to the word that is asked for.
#include "library/settings/profstr.h"

#include "os/text/ascii.h"

namespace tarn {
namespace {

constexpr std::string_view::size_type npos = std::string_view::npos;

bool isWordChar(char c) {
    return c >= 33 && c <= 126;
}

struct Piece {
    std::size_t start = 0, end = 0;
    [[nodiscard]] bool empty() const { return start == end; }
};

// The end of the piece that starts at `start`. A quoted token without its second quote runs to the end of the
// text.
std::size_t pieceEnd(std::string_view text, std::size_t start, bool quotes) {
    if (quotes && text[start] == '"') {
        const std::size_t close = text.find('"', start + 1);
        return close == npos ? text.size() : close + 1;
    }
    std::size_t end = start;
    while (end < text.size() && isWordChar(text[end])) ++end;
    return end;
}

Piece nextPiece(std::string_view text, std::size_t from, bool quotes) {
    while (from < text.size() && !isWordChar(text[from])) ++from;
    if (from >= text.size()) return {};
    return {from, pieceEnd(text, from, quotes)};
}

int countPieces(std::string_view text, bool quotes) {
    int count = 0;
    for (Piece p = nextPiece(text, 0, quotes); !p.empty(); p = nextPiece(text, p.end, quotes)) ++count;
    return count;
}

Piece findPiece(std::string_view text, int n, bool quotes) {
    if (n < 1) return {};
    Piece p = nextPiece(text, 0, quotes);
    while (!p.empty() && --n > 0) p = nextPiece(text, p.end, quotes);
    return p;
}

int position(const Piece& piece) {
    return piece.empty() ? 0 : static_cast<int>(piece.start) + 1;
}

}  // namespace

int STRWORDCOUNT(std::string_view text) {
    return countPieces(text, false);
}

std::string STRWORD(std::string_view text, int n) {
    const Piece p = findPiece(text, n, false);
    return std::string(text.substr(p.start, p.end - p.start));
}

int STRWORDPOS(std::string_view text, int n) {
    return position(findPiece(text, n, false));
}

int STRTOKENCOUNT(std::string_view text) {
    return countPieces(text, true);
}

std::string STRTOKEN(std::string_view text, int n) {
    const Piece p = findPiece(text, n, true);
    return std::string(text.substr(p.start, p.end - p.start));
}

int STRTOKENPOS(std::string_view text, int n) {
    return position(findPiece(text, n, true));
}

void ADDWORD(std::string_view word, std::string_view separator, std::string& text) {
    if (!text.empty() && text.back() != '\n') text.append(separator);
    text.append(word);
}

int TOUPPER(int character) {
    return character >= 'a' && character <= 'z' ? character - 32 : character;
}
int TOLOWER(int character) {
    return character >= 'A' && character <= 'Z' ? character + 32 : character;
}

}  // namespace tarn
