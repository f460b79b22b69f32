// SPDX-License-Identifier: GPL-3.0-or-later
//
// The engine counts its steps back, and gives up after so many; but a pattern may also walk over the same text again and
// again without one. So it calls out in front of each item of the pattern, and the call looks at the clock now and then.
#include "ide/search/regex.h"

#include "ide/editor/lineends.h"
#include "os/clock.h"
#include "os/text/ascii.h"
#include "os/text/utf8.h"

#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

#include <algorithm>
#include <vector>

namespace tarn {
namespace {

constexpr std::uint32_t MostSteps = 20'000'000, MostDepth = 1'000'000,
                        MostMemory = 64 * 1024;  // the last in KiB
constexpr std::size_t LongestPattern = 10'000;
constexpr int CallsPerLook = 256;
constexpr const char* TooMuchTime = "The pattern needs too much time.";

struct Deadline {
    std::int64_t at = 0;  // of the steady clock
    int calls = 0;
};

int look(pcre2_callout_block*, void* data) {
    auto& deadline = *static_cast<Deadline*>(data);
    if (++deadline.calls % CallsPerLook != 0) return 0;
    return os::clock().steady() < deadline.at ? 0 : PCRE2_ERROR_CALLOUT;
}

struct FreeCode {
    void operator()(pcre2_code* code) const { pcre2_code_free(code); }
};
struct FreeRules {
    void operator()(pcre2_compile_context* rules) const { pcre2_compile_context_free(rules); }
};
struct FreeContext {
    void operator()(pcre2_match_context* context) const { pcre2_match_context_free(context); }
};
struct FreeMatch {
    void operator()(pcre2_match_data* match) const { pcre2_match_data_free(match); }
};
using Code = std::unique_ptr<pcre2_code, FreeCode>;

const unsigned char* bytesOf(std::string_view text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

// A line ends with LF or CR LF: what is put in behind a line must not come between those two.
pcre2_compile_context* rules() {
    static const std::unique_ptr<pcre2_compile_context, FreeRules> both = [] {
        std::unique_ptr<pcre2_compile_context, FreeRules> made(pcre2_compile_context_create(nullptr));
        pcre2_set_newline(made.get(), PCRE2_NEWLINE_ANYCRLF);
        return made;
    }();
    return both.get();
}

std::string messageOf(int error) {
    unsigned char text[256] = {};
    pcre2_get_error_message(error, text, sizeof text);
    return reinterpret_cast<const char*>(text);
}

bool isAscii(std::string_view text) {
    return std::none_of(text.begin(), text.end(), [](char c) { return static_cast<signed char>(c) < 0; });
}

// Whether all of the text is sound UTF-8: told by the engine itself, so that both mean the same.
bool isSoundUtf8(std::string_view text) {
    int error = 0;
    std::size_t offset = 0;
    static const Code empty(
        pcre2_compile(bytesOf("a"), 1, PCRE2_UTF | PCRE2_ANCHORED, &error, &offset, nullptr));
    static const std::unique_ptr<pcre2_match_data, FreeMatch> match(pcre2_match_data_create(1, nullptr));
    const int result = pcre2_match(empty.get(), bytesOf(text), text.size(), 0, 0, match.get(), nullptr);
    return result >= PCRE2_ERROR_NOMATCH;
}

}  // namespace

struct RegexSearch::Engine {
    std::string pattern;
    bool matchCase = false;
    Code characters, bytes;
    std::unique_ptr<pcre2_match_context, FreeContext> context{pcre2_match_context_create(nullptr)};
    std::unique_ptr<pcre2_match_data, FreeMatch> match{pcre2_match_data_create(100, nullptr)};
    std::int64_t spent = 0;
    Deadline deadline;
    // Which text was looked at last, since looking costs its whole length.
    const char* known = nullptr;
    std::size_t knownSize = 0;
    bool byCharacters = true;
    std::vector<std::string> groups;  // of the last hit
    std::string lineEnd;              // that of this text; empty: not looked for

    Code compile(bool utf, std::string& problem) const {
        int error = 0;
        std::size_t offset = 0;
        const std::uint32_t options = PCRE2_MULTILINE | PCRE2_AUTO_CALLOUT | PCRE2_NEVER_BACKSLASH_C |
                                      (matchCase ? 0 : PCRE2_CASELESS) |
                                      (utf ? PCRE2_UTF | PCRE2_UCP : PCRE2_NEVER_UTF);
        Code code(pcre2_compile(bytesOf(pattern), pattern.size(), options, &error, &offset, rules()));
        if (code == nullptr)
            problem = "The pattern is not valid at character " + std::to_string(offset) + ":\n" +
                      messageOf(error) + ".";
        return code;
    }
    [[nodiscard]] const pcre2_code* codeFor(std::string_view text) {
        if (text.data() != known || text.size() != knownSize) {
            known = text.data();
            knownSize = text.size();
            lineEnd.clear();
            byCharacters = characters != nullptr && needsCharacters(text);
        }
        return byCharacters ? characters.get() : bytes.get();
    }
    // Where all is ASCII both codes mean the same, and that of bytes takes half the time.
    [[nodiscard]] bool needsCharacters(std::string_view text) const {
        if (bytes != nullptr && isAscii(text) && isAscii(pattern)) return false;
        return isSoundUtf8(text);
    }
    int run(std::string_view text, std::size_t from) {
        const pcre2_code* const code = codeFor(text);
        if (code == nullptr) return PCRE2_ERROR_NOMATCH;
        if (code == characters.get())
            while (utf8::isInside(text, from)) ++from;
        return pcre2_match(code, bytesOf(text), text.size(), from, PCRE2_NOTEMPTY | PCRE2_NO_UTF_CHECK,
                           match.get(), context.get());
    }
    [[nodiscard]] TextHit hit() const {
        const std::size_t* const places = pcre2_get_ovector_pointer(match.get());
        return {static_cast<int>(places[0]) + 1, static_cast<int>(places[1] - places[0])};
    }
    void keepGroups(std::string_view text, int count) {
        const std::size_t* const places = pcre2_get_ovector_pointer(match.get());
        groups.clear();
        for (int n = 0; n < count; ++n) {
            const std::size_t from = places[2 * n], to = places[2 * n + 1];
            groups.emplace_back(from == PCRE2_UNSET || to < from ? std::string_view()
                                                                 : text.substr(from, to - from));
        }
    }
};

RegexSearch::RegexSearch(std::string_view pattern, bool matchWord, bool matchCase, std::int64_t patience)
    : engine_(std::make_unique<Engine>()), matchWord_(matchWord), patience_(patience) {
    if (pattern.size() > LongestPattern) {
        problem_ = "The pattern is too long.";
        return;
    }
    engine_->pattern = pattern;
    engine_->matchCase = matchCase;
    std::string ignored;
    engine_->characters = engine_->compile(true, ignored);
    engine_->bytes = engine_->compile(false, engine_->characters == nullptr ? problem_ : ignored);
    if (engine_->bytes != nullptr) problem_.clear();
    pcre2_match_context* const context = engine_->context.get();
    pcre2_set_match_limit(context, MostSteps);
    pcre2_set_depth_limit(context, MostDepth);
    pcre2_set_heap_limit(context, MostMemory);
    pcre2_set_callout(context, look, &engine_->deadline);
}

RegexSearch::~RegexSearch() = default;

void RegexSearch::anew() {
    engine_->spent = 0;
    if (engine_->characters != nullptr || engine_->bytes != nullptr) problem_.clear();
    engine_->known = nullptr;
}

std::string RegexSearch::lineEndOf(std::string_view text) const {
    if (engine_->lineEnd.empty()) engine_->lineEnd = ADOPTLINEENDS("\n", text);
    return engine_->lineEnd;
}

TextHit RegexSearch::next(std::string_view text, int start, std::optional<char> before) {
    if (!problem_.empty()) return {};
    const std::int64_t began = os::clock().steady();
    engine_->deadline.at = began + patience_ - engine_->spent;
    TextHit found;
    for (auto from = static_cast<std::size_t>(std::max(start, 1) - 1); from <= text.size();) {
        const int count = engine_->run(text, from);
        if (count < 0) {
            if (count != PCRE2_ERROR_NOMATCH) problem_ = TooMuchTime;
            break;
        }
        const TextHit hit = engine_->hit();
        if (!matchWord_ || ISWORDHIT(text, hit, hit.start == start ? before : std::nullopt)) {
            engine_->keepGroups(text, count);
            found = hit;
            break;
        }
        from = static_cast<std::size_t>(hit.start);
    }
    engine_->spent += os::clock().steady() - began;
    if (problem_.empty() && found.start == 0 && engine_->spent >= patience_) problem_ = TooMuchTime;
    return found;
}

std::string RegexSearch::replacement(std::string_view text, const std::string& with) const {
    std::string out;
    const auto group = [&](std::size_t n) {
        return n < engine_->groups.size() ? engine_->groups[n] : std::string();
    };
    for (std::size_t i = 0; i < with.size(); ++i) {
        const char c = with[i], next = i + 1 < with.size() ? with[i + 1] : '\0';
        const std::size_t brace = c == '$' && next == '{' ? with.find('}', i) : std::string::npos;
        if (c == '$' && ascii::isDigit(next)) {
            out += group(static_cast<std::size_t>(next - '0'));
            ++i;
        } else if (brace != std::string::npos && brace > i + 2 && brace < i + 5 &&
                   std::all_of(with.begin() + static_cast<std::ptrdiff_t>(i) + 2,
                               with.begin() + static_cast<std::ptrdiff_t>(brace), ascii::isDigit)) {
            out += group(static_cast<std::size_t>(std::stoi(with.substr(i + 2, brace - i - 2))));
            i = brace;
        } else if ((c == '$' && next == '$') || (c == '\\' && next == '\\')) {
            out += c;
            ++i;
        } else if (c == '\\' && (next == 'n' || next == 't')) {
            out += next == 'n' ? lineEndOf(text) : "\t";
            ++i;
        } else {
            out += c;
        }
    }
    return out;
}

}  // namespace tarn
