// SPDX-License-Identifier: Apache-2.0
//
// Changing a version block: only the values that differ, each in its place. The block is taken apart once, the changes
// are gathered, and one pass makes them.
#include "library/dialogs/versioninfo_internal.h"
#include "library/system/system.h"

#include <algorithm>
#include <vector>

MODULE("dlgutil")

namespace tarn {
namespace {

using detail::VersionNumbers;
using detail::VersionSpan;
using detail::VersionValue;

// Whether this program wrote it all, for whatever stem: as a block of fields, or as that of a new program.
bool isOurs(const std::string& block, const detail::VersionParts& parts, const VersionFields& fields) {
    const auto named = std::find_if(parts.values.begin(), parts.values.end(), [](const VersionValue& value) {
        return STREQUAL(value.key, "InternalName");
    });
    if (named == parts.values.end()) return false;
    std::string text = FIELDSTOVERSIONINFO(parts.name, fields, named->text);
    if (block == text) return true;
    for (const char* key : {"Comments", "LegalCopyright", "LegalTrademarks"})
        text = STRREPLACE(text, detail::versionValueLine(key, ""), "");
    return block == text;
}

// Whether a text is those numbers, parted by points or commas, and nothing else.
bool saysVersion(const std::string& text, const std::string& version) {
    std::string numbers = text;
    std::replace_if(
        numbers.begin(), numbers.end(), [](char c) { return c == '.' || c == ','; }, ' ');
    std::string rest = numbers;
    for (int i = 0; i < 4; ++i) rest = STRSPLIT(rest).right;
    return STRTRIM(rest).empty() &&
           detail::versionNumbers(numbers, ".") == detail::versionNumbers(version, ".");
}

class Editor {
public:
    explicit Editor(const std::string& block) : block_(block), parts_(detail::versionPartsOf(block)) {}
    [[nodiscard]] const detail::VersionParts& parts() const { return parts_; }
    void putText(std::string_view key, const std::string& before, const std::string& after);
    void putVersion(const std::string& before, const std::string& after);
    [[nodiscard]] std::string changed();

private:
    void replace(VersionSpan span, std::string text) { edits_.push_back({span, std::move(text)}); }
    void replaceAll(const std::vector<VersionSpan>& spans, const std::string& text);
    void replaceText(const VersionValue& value, const std::string& text);
    void insertLine(std::size_t behind, const std::string& line);
    void addTexts();
    void addTable();
    [[nodiscard]] const VersionValue* lastText() const;
    [[nodiscard]] std::string indentAt(std::size_t at) const;
    [[nodiscard]] bool endsLine(std::size_t at) const;

    struct Edit {
        VersionSpan span;
        std::string text;
    };
    const std::string& block_;
    detail::VersionParts parts_;
    std::vector<Edit> edits_;
    std::vector<std::string> added_;  // lines of texts that the block does not have
};

// The text stands where the first of them stood. The others go, but not the comments between them.
void Editor::replaceAll(const std::vector<VersionSpan>& spans, const std::string& text) {
    replace(spans.front(), text);
    for (std::size_t i = 1; i < spans.size(); ++i) {
        const std::size_t before = spans[i - 1].end, begin = spans[i].begin;
        const std::string_view between = std::string_view(block_).substr(before, begin - before);
        const bool comment = between.find_first_not_of(" \t\r\n") != std::string_view::npos;
        const std::size_t kept = comment ? between.find_last_not_of(" \t") + 1 : 0;
        replace({before + kept, spans[i].end}, "");
    }
}

void Editor::replaceText(const VersionValue& value, const std::string& text) {
    replaceAll(value.spans, detail::quotedVersionText(text, value.null));
}

// Where that key says the old text; into a line of its own if none does.
void Editor::putText(std::string_view key, const std::string& before, const std::string& after) {
    bool found = false;
    for (const VersionValue& value : parts_.values) {
        if (!STREQUAL(value.key, key) || value.text != before) continue;
        replaceText(value, after);
        found = true;
    }
    if (!found) added_.push_back(detail::versionValueLine(key, after));
}

void Editor::putVersion(const std::string& before, const std::string& after) {
    const std::string numbers = detail::versionNumbers(after, ",");
    bool found = false;
    for (const VersionNumbers& old : parts_.numbers) {
        const bool file = STREQUAL(old.word, "FILEVERSION");
        found = found || file;
        if (!file && !saysVersion(old.text, before)) continue;
        const std::size_t begin = old.spans.front().begin;
        const bool close = begin > 0 && static_cast<unsigned char>(block_[begin - 1]) > ' ';
        replaceAll(old.spans, (close ? " " : "") + numbers);
    }
    if (!found) insertLine(parts_.headEnd, "    FILEVERSION " + numbers);
    for (const VersionValue& value : parts_.values)
        if ((STREQUAL(value.key, "FileVersion") || STREQUAL(value.key, "ProductVersion")) &&
            value.spans.size() == 1 && saysVersion(value.text, before))
            replaceText(value, detail::versionNumbers(after, "."));
}

bool Editor::endsLine(std::size_t at) const {
    const std::size_t next = std::min(block_.find_first_not_of(" \t\r", at), block_.size());
    return next == block_.size() || block_[next] == '\n' || block_.compare(next, 2, "//") == 0;
}

std::string Editor::indentAt(std::size_t at) const {
    const std::size_t begin = at == 0 ? 0 : block_.rfind('\n', at - 1) + 1;
    return block_.substr(begin, block_.find_first_not_of(" \t", begin) - begin);
}

// A line of its own where nothing but a comment follows there, otherwise into the line.
void Editor::insertLine(std::size_t behind, const std::string& line) {
    if (!endsLine(behind)) return replace({behind, behind}, " " + STRLTRIM(line));
    const std::size_t end = block_.find('\n', behind);
    if (end == std::string::npos) return replace({block_.size(), block_.size()}, "\n" + line);
    replace({end + 1, end + 1}, line + "\n");
}

// The last of the first run of texts; null if there are none.
const VersionValue* Editor::lastText() const {
    const auto isText = [](const VersionValue& value) { return value.isString; };
    const auto first = std::find_if(parts_.values.begin(), parts_.values.end(), isText);
    if (first == parts_.values.end()) return nullptr;
    const auto behind = std::find_if(first + 1, parts_.values.end(), [&](const VersionValue& value) {
        return !isText(value) || !value.follows;
    });
    return &*(behind - 1);
}

// Behind the texts that are there, as they are written; where there are none, in a table before the block's last END.
void Editor::addTexts() {
    const VersionValue* const last = lastText();
    if (added_.empty()) return;
    if (last == nullptr) return addTable();
    for (const std::string& line : added_)
        insertLine(last->whole.end, indentAt(last->whole.begin) + STRTRIM(line));
}

void Editor::addTable() {
    std::string table =
        "    BLOCK \"StringFileInfo\"\n    BEGIN\n        BLOCK \"080904b0\"\n        BEGIN\n";
    for (const std::string& line : added_) table += line;
    table += "        END\n    END\n";
    const std::size_t blanks = parts_.close - indentAt(parts_.close).size();
    const bool alone = blanks == 0 || block_[blanks - 1] == '\n';
    const std::size_t at = alone ? blanks : parts_.close;
    replace({at, at}, (alone ? "" : "\n") + table);
}

std::string Editor::changed() {
    addTexts();
    std::stable_sort(edits_.begin(), edits_.end(),
                     [](const Edit& a, const Edit& b) { return a.span.begin < b.span.begin; });
    std::string text;
    std::size_t at = 0;
    for (const Edit& edit : edits_) {
        text.append(block_, at, edit.span.begin - at).append(edit.text);
        at = edit.span.end;
    }
    return text.append(block_, at);
}

}  // namespace

std::string CHANGEVERSIONINFO(const std::string& block, const std::string& name, const VersionFields& fields,
                              const std::string& fileStem) {
    FRAME(CHANGEVERSIONINFO);
    STAMP();
    Editor editor(block);
    const VersionFields before = VERSIONINFOTOFIELDS(block);
    if (!editor.parts().closed || isOurs(block, editor.parts(), before))
        return FIELDSTOVERSIONINFO(name, fields, fileStem);
    STAMP();
    for (const detail::VersionKey& key : detail::versionKeys)
        if (const std::string& text = fields.*key.field; text != before.*key.field)
            editor.putText(key.name, before.*key.field, text);
    if (fields.version != before.version) editor.putVersion(before.version, fields.version);
    return editor.changed();
}

}  // namespace tarn
