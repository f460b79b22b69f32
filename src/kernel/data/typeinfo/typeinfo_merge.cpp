// SPDX-License-Identifier: Apache-2.0
//
// Merging two declarations of one source, line by line. What each pair of types widens to is one table. Where
// the two stand at different names, one of them may have lines that the other lacks: the walk looks ahead in
// the same block for the line at which the other stands. It never looks past the end of the block, and takes
// no line for one that is lacking whose name the other has further on: elements that changed places are a
// change of names. Closing lines are called "end" whatever their case; a line whose name cannot be read is
// called by its whole text, so that two such lines are one element only when they are the same.
//
// Lines keep the indent of `a`. Cost: linear; the table of names is only made when names differ.
#include "kernel/data/typeinfo/typeinfo_text_internal.h"

#include <iterator>
#include <unordered_map>
#include <utility>

namespace tarn {

using namespace typeinfo;

namespace {

constexpr std::size_t npos = std::string_view::npos;

std::string_view nameOf(const Line& line) {
    if (line.isEnd()) return "end";
    return line.name.empty() ? trimmed(ascii::withoutLineEnd(line.text)) : line.name;
}

std::string_view shownName(const Line& line) {
    return nameOf(line).substr(0, MaxTypeInfoName);
}

bool sameElement(const Line& a, const Line& b) {
    return nameOf(a) == nameOf(b) && ascii::equal(a.typeName, b.typeName);
}

// ---- the lines of a declaration ----

class Declaration {
public:
    explicit Declaration(std::string_view text) {
        while (!text.empty()) lines_.push_back(readLine(ascii::takeLine(text)));
    }
    [[nodiscard]] std::size_t size() const { return lines_.size(); }
    const Line& operator[](std::size_t at) const { return lines_[at]; }

    // The lines of the element at `at`, down to its closing line.
    [[nodiscard]] std::size_t blockSize(std::size_t at) const {
        std::size_t end = at + 1;
        while (end < size() && lines_[end].indent > lines_[at].indent) ++end;
        if (end < size() && lines_[end].isEnd() && lines_[end].indent == lines_[at].indent) ++end;
        return end - at;
    }
    // The first line from `at` on that is the same element as `line`, in the block of `at`. A line less deep
    // than `at` is the end of that block.
    [[nodiscard]] std::size_t find(const Line& line, std::size_t at) {
        if (line.indent > lines_[at].indent) return npos;
        if (line.indent < lines_[at].indent) {
            while (at < size() && lines_[at].indent > line.indent) ++at;
            return at < size() && sameElement(lines_[at], line) ? at : npos;
        }
        for (const std::size_t* candidate = named(nameOf(line), at);
             candidate != nullptr && *candidate != npos; ++candidate)
            if (sameElement(lines_[*candidate], line)) return *candidate;
        return npos;
    }
    // Whether the block of `at` has an element of that name and indent from there on.
    [[nodiscard]] bool has(const Line& line, std::size_t at) {
        return line.indent == lines_[at].indent && named(nameOf(line), at) != nullptr;
    }

private:
    // The lines from `at` on in its block with that name, npos behind the last; null for none.
    const std::size_t* named(std::string_view name, std::size_t at) {
        if (blocks_.empty()) makeTable();
        const auto found = table_.find(key(at, name));
        if (found == table_.end()) return nullptr;
        const auto& places = found->second;
        const auto place = std::lower_bound(places.begin(), places.end(), at);
        return *place != npos ? &*place : nullptr;
    }
    // A block is named by the line that it stands below and the indent.
    [[nodiscard]] std::string key(std::size_t at, std::string_view name) const {
        std::string k = std::to_string(blocks_[at]) + ' ' + std::to_string(lines_[at].indent) + ' ';
        return k.append(name);
    }
    void makeTable() {
        std::vector<std::size_t> open;
        for (std::size_t i = 0; i < size(); ++i) {
            while (!open.empty() && lines_[open.back()].indent >= lines_[i].indent) open.pop_back();
            blocks_.push_back(open.empty() ? npos : open.back());
            open.push_back(i);
            table_[key(i, nameOf(lines_[i]))].push_back(i);
        }
        for (auto& entry : table_) entry.second.push_back(npos);
    }

    std::vector<Line> lines_;
    std::vector<std::size_t> blocks_;  // of each line; empty until the table is needed
    std::unordered_map<std::string, std::vector<std::size_t>> table_;
};

// The lines of `a` from `i` on that `b`, which stands at `j`, lacks; 0 when there are none.
std::size_t lacking(Declaration& a, std::size_t i, Declaration& b, std::size_t j) {
    const std::size_t found = a.find(b[j], i);
    if (found == npos) return 0;
    for (std::size_t at = i; at < found; ++at)
        if (a[at].indent == a[i].indent && !a[at].isEnd() && b.has(a[at], j)) return 0;
    return found - i;
}

InsertedLines inserted(Declaration& a, std::size_t i, Declaration& b, std::size_t j) {
    InsertedLines skip;
    skip.inA = static_cast<std::int32_t>(lacking(a, i, b, j));
    if (skip.inA == 0) skip.inB = static_cast<std::int32_t>(lacking(b, j, a, i));
    skip.found = skip.inA > 0 || skip.inB > 0;
    return skip;
}

// ---- widening ----

enum TypeClass : unsigned {
    Scalar = 1,
    Whole = 2,
    Decimal = 4,
    Floating = 8,
    Text = 16,
    Any = 32,
    Bounded = 64,
    Record = 128,
    List = 256,
};

constexpr struct {
    std::string_view name;
    unsigned classes;
} typeClasses[] = {
    {"boolean", Scalar},
    {"bit", Scalar},
    {"integer", Scalar | Whole},
    {"int", Scalar | Whole},
    {"fixed", Scalar | Decimal},
    {"money", Scalar | Decimal},
    {"real", Scalar | Floating},
    {"float", Scalar | Floating},
    {"string", Text},
    {"varchar", Text},
    {"char", Text},
    {"nvarchar", Text},
    {"nchar", Text},
    {"any", Any},
    {"record", Record},
    {"list", List},
};

unsigned classesOf(const Line& line) {
    for (const auto& row : typeClasses)
        if (ascii::equal(row.name, line.typeName)) return row.classes;
    const std::int32_t kind = TypeInfoKind(line.typeName);
    const bool holdsData = kind == KindEnum || kind == KindString || kind == KindSet || kind == KindArray;
    return holdsData || line.bounds.lb1 != TypeInfoNoValue ? unsigned{Bounded} : 0U;
}

enum class Widening { Wider, WiderText, WiderBlock, AsList };

// The first row that fits decides, the two types in either order.
constexpr struct {
    unsigned narrow, wide;
    Widening result;
} wideningRules[] = {
    {Scalar, Text, Widening::WiderText},        {Whole, Decimal, Widening::Wider},
    {Whole, Floating, Widening::Wider},         {Any, Scalar | Text | Bounded, Widening::Wider},
    {Any, Record | List, Widening::WiderBlock}, {Record, List, Widening::AsList},
};

constexpr std::int32_t leastWidenedText = 40;

// A text without a length, or with that of an unbounded string, holds every text, and a dynamic set every
// set.
bool holdsEvery(const Line& line) {
    const TypeBounds& b = line.bounds;
    const std::int32_t kind = TypeInfoKind(line.typeName);
    if (kind == KindSet) return b.lb1 == TypeInfoNoValue && b.ub1 == TypeInfoNoValue;
    const bool text = kind == KindString && !ascii::equal(line.typeName, "any");
    return text && (b.lb1 == TypeInfoNoValue || b.lb1 == UNBOUNDED);
}

// The greatest that a range holds; a single bound is both ends of its range.
std::int32_t upperOf(std::int32_t lb, std::int32_t ub) {
    return ub != TypeInfoNoValue ? ub : lb;
}

// Ranges widen to both sides; of single bounds the greater holds both.
void widenRange(std::int32_t& lb, std::int32_t& ub, std::int32_t otherLb, std::int32_t otherUb) {
    const bool ranges = ub != TypeInfoNoValue || otherUb != TypeInfoNoValue;
    const bool both = lb != TypeInfoNoValue && otherLb != TypeInfoNoValue;
    if (ranges) ub = std::max(upperOf(lb, ub), upperOf(otherLb, otherUb));
    lb = ranges && both ? std::min(lb, otherLb) : std::max(lb, otherLb);
}

TypeBounds widerBounds(TypeBounds a, const TypeBounds& b) {
    widenRange(a.lb1, a.ub1, b.lb1, b.ub1);
    widenRange(a.lb2, a.ub2, b.lb2, b.ub2);
    widenRange(a.lb3, a.ub3, b.lb3, b.ub3);
    return a;
}

// ---- the walk ----

class Merge {
public:
    Merge(std::string_view a, std::string_view b, std::size_t most) : a_(a), b_(b), most_(most) {}

    std::string run(std::string& report) {
        while (i_ < a_.size() && j_ < b_.size() && step()) {}
        for (; report_.empty() && i_ < a_.size(); ++i_) put(a_[i_], a_[i_].indent);
        for (; report_.empty() && j_ < b_.size(); ++j_) put(b_[j_], b_[j_].indent);
        report = std::move(report_);
        return std::move(out_);
    }

private:
    // False when the walk must stop: the report says why.
    bool step() {
        const Line &a = a_[i_], &b = b_[j_];
        if (sameElement(a, b)) {
            if (a.bounds == b.bounds || holdsEvery(a))
                put(a, a.indent);
            else if (holdsEvery(b))
                put(b, a.indent);
            else
                putWithBounds(a, widerBounds(a.bounds, b.bounds));
            return advance(1, 1);
        }
        const bool renamed = nameOf(a) != nameOf(b);
        if ((renamed || (a.isEnd() && a.indent != b.indent)) && putLacking()) return true;
        if (renamed)
            return stop("The name of an element changed, from '", shownName(a), "' to '", shownName(b), "'");
        if (putWider()) return true;
        return stop("The type of element '", a.name, "' changed, from ", a.typeName, " to ", b.typeName);
    }
    bool advance(std::size_t inA, std::size_t inB) {
        i_ += inA;
        j_ += inB;
        return true;
    }
    template <class... Parts>
    bool stop(const Parts&... parts) {
        (report_.append(parts), ...);
        return false;
    }

    bool putLacking() {
        const InsertedLines skip = inserted(a_, i_, b_, j_);
        for (std::int32_t n = 0; n < skip.inA; ++n, ++i_) put(a_[i_], a_[i_].indent);
        if (skip.inB > 0)
            putBlock(b_, j_, static_cast<std::size_t>(skip.inB), a_[i_].indent - levelOf(skip.inB));
        return advance(0, static_cast<std::size_t>(skip.inB)) && skip.found;
    }
    // The indent of the line of `b` that follows the inserted ones: it is that of the line of `a`.
    [[nodiscard]] std::int32_t levelOf(std::int32_t insertedLines) const {
        return b_[j_ + static_cast<std::size_t>(insertedLines)].indent;
    }
    void putBlock(const Declaration& from, std::size_t start, std::size_t count, std::int32_t deeper) {
        for (std::size_t at = start; at < start + count; ++at) put(from[at], from[at].indent + deeper);
    }

    bool putWider() {
        const Line &a = a_[i_], &b = b_[j_];
        const unsigned ofA = classesOf(a), ofB = classesOf(b);
        for (const auto& rule : wideningRules) {
            if ((ofA & rule.narrow) != 0 && (ofB & rule.wide) != 0) return putWider(rule.result, b, false);
            if ((ofB & rule.narrow) != 0 && (ofA & rule.wide) != 0) return putWider(rule.result, a, true);
        }
        return false;
    }
    bool putWider(Widening result, const Line& wide, bool isA) {
        const std::int32_t indent = a_[i_].indent;
        std::size_t lines = 1;
        if (result == Widening::AsList) {
            putText(indent, std::string(wide.name) + (wide.isEnd() ? " list" : " : list"));
        } else if (result == Widening::WiderBlock) {
            lines = isA ? a_.blockSize(i_) : b_.blockSize(j_);
            putBlock(isA ? a_ : b_, isA ? i_ : j_, lines, indent - wide.indent);
        } else if (result == Widening::WiderText && !holdsEvery(wide)) {
            TypeBounds bounds;
            bounds.lb1 = std::max(upperOf(wide.bounds.lb1, wide.bounds.ub1), leastWidenedText);
            putWithBounds(wide, bounds);
        } else {
            put(wide, indent);
        }
        return advance(isA ? lines : 1, isA ? 1 : lines);
    }

    // ---- writing whole lines, until one does not fit into the buffer of the caller ----

    void putLine(std::size_t tabs, std::string_view text, std::string_view end) {
        full_ = full_ || most_ - out_.size() < tabs + text.size() + end.size();
        if (!full_) out_.append(tabs, '\t').append(text).append(end);
    }
    void putText(std::int32_t indent, std::string_view text) {
        putLine(static_cast<std::size_t>(std::max(indent, 0)), text, "\n");
    }
    void put(const Line& line, std::int32_t indent) {
        if (line.indent != indent)
            putText(indent, ascii::withoutLineEnd(line.text).substr(static_cast<std::size_t>(line.indent)));
        else
            putLine(0, line.text, line.text.back() == '\n' ? "" : "\n");
    }
    // The line up to its bracket, and new bounds.
    void putWithBounds(const Line& line, const TypeBounds& bounds) {
        const std::string_view body = ascii::withoutLineEnd(line.text);
        std::string_view head = body.substr(0, body.find('[', line.typeEnd));
        head.remove_prefix(static_cast<std::size_t>(line.indent));
        putText(a_[i_].indent, std::string(trimmed(head)) + boundsText(bounds));
    }

    Declaration a_, b_;
    std::size_t most_;
    std::size_t i_ = 0, j_ = 0;
    bool full_ = false;
    std::string out_, report_;
};

// A declaration begins with a name, without an indent. Nothing is one too.
bool isDeclaration(std::string_view text) {
    return text.empty() || text.front() == '"' || IsTypeInfoNameChar(text.front());
}

}  // namespace

InsertedLines TypeInfoFindInserted(std::string_view a, std::string_view b) {
    if (a.empty() || b.empty()) return {};
    Declaration linesOfA(a), linesOfB(b);
    return inserted(linesOfA, 0, linesOfB, 0);
}

std::string TypeInfoMerge(std::string_view a, std::string_view b, std::int32_t outSize, std::string& report) {
    report.clear();
    if (outSize < 1 || !isDeclaration(a) || !isDeclaration(b)) return {};
    const auto most = static_cast<std::size_t>(outSize - 1);
    if (a == b) b = {};
    return Merge(a, b, most).run(report);
}

}  // namespace tarn
