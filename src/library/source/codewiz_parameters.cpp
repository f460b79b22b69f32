// SPDX-License-Identifier: Apache-2.0
//
// The parameters of templates: found, listed, and replaced by their values.
#include "library/source/codewiz_internal.h"
#include "library/system/system.h"
#include "os/text/ascii.h"

#include <unordered_map>
#include <unordered_set>
#include <vector>

MODULE("codewiz", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

// What stands between two "$" of one line.
struct Mark {
    std::string_view name, type;
    std::size_t length = 0;  // with both signs; 0: the sign in front is text
};

// The mark that begins with the "$" at `at`.
Mark markAt(std::string_view text, std::size_t at) {
    const std::size_t end = text.find_first_of("$\n", at + 1);
    if (end == std::string_view::npos || text[end] == '\n') return {};
    const std::string_view inside = text.substr(at + 1, end - at - 1);
    const std::size_t sign = inside.find('=');
    Mark mark{detail::trimmed(inside.substr(0, sign)), {}, end - at + 1};
    if (sign != std::string_view::npos) mark.type = detail::trimmed(inside.substr(sign + 1));
    if (mark.type.empty()) mark.type = "STRING";
    return mark.name.empty() ? Mark{} : mark;
}

std::vector<std::string_view> linesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) lines.push_back(ascii::withoutLineEnd(ascii::takeLine(text)));
    return lines;
}

// Puts values in, each already filled with those of the parameters behind it: so it comes to the same as replacing name
// after name, at the cost of one walk over each text.
class Filler {
public:
    explicit Filler(const TemplateParameters& parameters) {
        const auto names = linesOf(parameters.names), values = linesOf(parameters.values);
        values_.resize(names.size());
        for (std::size_t i = 0; i < names.size(); ++i) places_.try_emplace(ascii::lowered(names[i]), i);
        for (std::size_t i = names.size(); i > 0 && !tooLong_; --i)
            if (i <= values.size()) values_[i - 1] = fill(detail::trimmed(values[i - 1]), i);
    }
    // The text with the values of the parameters from place `from` on.
    std::string fill(std::string_view text, std::size_t from) {
        std::string result;
        std::size_t done = 0;
        for (std::size_t at = 0; (at = text.find('$', at)) != std::string_view::npos;) {
            const Mark mark = markAt(text, at);
            const auto place = mark.length == 0 ? places_.end() : places_.find(ascii::lowered(mark.name));
            if (place == places_.end() || place->second < from) {
                ++at;
                continue;
            }
            result.append(text, done, at - done).append(values_[place->second]);
            done = at += mark.length;
            tooLong_ = tooLong_ || result.size() >= MaxTemplateText;
            if (tooLong_) return {};
        }
        result.append(text, done);
        tooLong_ = tooLong_ || result.size() >= MaxTemplateText;
        return result;
    }
    [[nodiscard]] bool tooLong() const { return tooLong_; }

private:
    std::unordered_map<std::string, std::size_t> places_;
    std::vector<std::string> values_;
    bool tooLong_ = false;
};

}  // namespace

TemplateParameters TEMPLATETOPROPLIST(std::string_view text) {
    FRAME(TEMPLATETOPROPLIST);
    TemplateParameters found;
    std::unordered_set<std::string> known;
    for (std::size_t at = 0; (at = text.find('$', at)) != std::string_view::npos;) {
        const Mark mark = markAt(text, at);
        at += mark.length == 0 ? 1 : mark.length;
        if (mark.length == 0 || !known.insert(ascii::lowered(mark.name)).second) continue;
        found.names.append(mark.name).append("\n");
        found.types.append(mark.type).append("\n");
        found.values.append("\n");
    }
    return found;
}

std::optional<std::string> detail::fillParameters(const TemplateParameters& parameters,
                                                  std::string_view text) {
    Filler filler(parameters);
    std::string result = filler.fill(text, 0);
    if (filler.tooLong()) return std::nullopt;
    return result;
}

}  // namespace tarn
