// SPDX-License-Identifier: Apache-2.0
#include "tarn_data/base/tables.h"

#include "kernel/data/datafile.h"
#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/index/indexes.h"
#include "kernel/lists/packing.h"
#include "kernel/run/runtime.h"
#include "kernel/tables/tables.h"
#include "kernel/tables/tables_file_places.h"
#include "kernel/values/adt.h"
#include "kernel/values/records.h"
#include "os/paths.h"
#include "os/text/ascii.h"
#include "os/text/bigendian.h"

#include <algorithm>

namespace tarn::datatool {

namespace {

std::string untilZero(std::string_view bytes) {
    return std::string(bytes.substr(0, bytes.find('\0')));
}

}  // namespace

Problem tableFacts(const std::string& file, const RowType& type, TableFacts& facts) {
    constexpr std::size_t countBytes = 4;
    FileRows rows;
    if (!rows.open(file)) return unreadable(file, rows.error());
    facts.rowBytes = rowBytes(type);
    facts.size = rows.size();
    if (type.capacity != UNBOUNDED) {
        std::string head;
        if (!rows.read(0, countBytes, head)) return unreadable(file, rows.error());
        facts.headerBytes = std::int64_t{countBytes};
        facts.counted =
            head.size() == countBytes ? std::int64_t{bigendian::at<std::uint32_t>(head.data())} : 0;
    }
    Problem problem = findNote(file, facts.headerBytes, facts.rowBytes, facts.note);
    if (problem.any()) return problem;
    const std::int64_t end = facts.note.offset >= 0 ? facts.note.offset : facts.size;
    const std::int64_t room = end - facts.headerBytes;
    facts.whole = std::max<std::int64_t>(room, 0) / facts.rowBytes;
    facts.behind = room < 0 ? room : facts.size - facts.headerBytes - facts.whole * facts.rowBytes;
    return {};
}

Problem typeIsMissing(const std::string& file) {
    return {fileWord(file) + "is a table file, which does not tell what its rows are.",
            "Give --type=FILE, a text file with the row's declaration: type information text, or what "
            "'tarn-data info' printed of the data that the table was made from.",
            WrongUsage};
}

// ---- rows ----

RowBytes::RowBytes(const RowType& type) {
    AdtInit(row_.get(), type.row.get(), KindRecord);
    std::int64_t at = 0;
    for (std::int32_t n = 1; n <= FieldCountOf(type.row.get()->kinds); ++n) {
        offsets_.push_back(static_cast<std::size_t>(at));
        at += PackedLength(RecordFieldAddress(type.row.get(), n), FieldKindAt(type.row.get()->kinds, n));
    }
    offsets_.push_back(static_cast<std::size_t>(at));
}

std::int32_t RowBytes::badField(std::string_view row) {
    for (std::int32_t n = 1; n < static_cast<std::int32_t>(offsets_.size()); ++n) {
        const Kind kind = FieldKindAt(row_.get()->kinds, n);
        if (!Unpack(row, RecordFieldAddress(row_.get(), n), kind)) return n;
    }
    return 0;
}

std::int32_t RowBytes::oddText(std::string_view row) const {
    constexpr std::size_t lengthBytes = 4;
    for (std::int32_t n = 1; n < static_cast<std::int32_t>(offsets_.size()); ++n) {
        if (FieldKindAt(row_.get()->kinds, n) != KindString) continue;
        const auto at = static_cast<std::size_t>(n) - 1;
        const std::string_view field = row.substr(offsets_[at], offsets_[at + 1] - offsets_[at]);
        const std::size_t end = lengthBytes + std::size_t{bigendian::at<std::uint32_t>(field.data())};
        if (field.find_first_not_of('\0', end) != std::string_view::npos) return n;
    }
    return 0;
}

// ---- keys ----

std::vector<std::string> fieldNames(std::string_view columns) {
    std::vector<std::string> names;
    const auto lines = static_cast<std::int32_t>(std::count(columns.begin(), columns.end(), '\n'));
    for (std::int32_t n = 1; n <= lines; ++n) {
        const TypeInfoElement element = TypeInfoParseLine(columns, n);
        if (element.indent == 0 && !element.isEnd()) names.push_back(element.name);
    }
    return names;
}

std::string joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
    return text;
}

namespace {

// The number of a field, or 0. In the text of a key that nobody named, fields are called by their numbers.
std::int32_t findField(const std::vector<std::string>& names, const std::string& name) {
    for (std::size_t n = 0; n < names.size(); ++n)
        if (ascii::equal(names[n], name)) return static_cast<std::int32_t>(n) + 1;
    for (std::size_t n = 0; n < names.size(); ++n) {
        const auto number = static_cast<std::int32_t>(n) + 1;
        if (ascii::equal(TypeInfoDefaultName({}, number), name)) return number;
    }
    return 0;
}

// The map of a key, or 0: `missing` is then the name of a field that the row has not.
std::int32_t mapOf(const std::vector<std::string>& key, const RowType& type, std::string& missing) {
    const std::vector<std::string> names = fieldNames(type.columns);
    std::int32_t fields[MaxKeyFields] = {};
    for (std::size_t i = 0; i < key.size() && i < std::size_t{MaxKeyFields}; ++i) {
        fields[i] = findField(names, key[i]);
        if (fields[i] == 0) return missing = key[i], 0;
    }
    return MakeKeyMap(fields[0], fields[1], fields[2], fields[3]);
}

bool isKey(const RowType& type, std::int32_t map) {
    KeyView view;
    return KeyOfRow(*type.row.get(), map, view);
}

}  // namespace

Problem keyMapsOf(const std::vector<std::vector<std::string>>& keys, const RowType& type,
                  std::vector<std::int32_t>& maps) {
    maps.clear();
    for (const std::vector<std::string>& key : keys) {
        std::string missing;
        maps.push_back(mapOf(key, type, missing));
        if (!missing.empty())
            return {"'" + missing + "' in --keys is no field of the row.",
                    "Its fields are " + joined(fieldNames(type.columns)) + ".", WrongUsage};
        if (!isKey(type, maps.back()))
            return {
                "The fields " + joined(key) + " cannot be a key.",
                "Key fields are boolean, enum, integer, fixed, real, strings with a length and characters.",
                WrongUsage};
    }
    return {};
}

// ---- index files ----

namespace {

// Whether nothing but zeros follows the text in its place.
bool isPadded(std::string_view place, const std::string& text) {
    return place.find_first_not_of('\0', text.size()) == std::string_view::npos && text.size() < place.size();
}

bool isUsualText(const std::string& text) {
    constexpr std::string_view start = "Index", afterNumber = " : record\n";
    return text.starts_with(start) && text.size() > start.size() && ascii::isDigit(text[start.size()]) &&
           std::string_view(text).substr(start.size() + 1).starts_with(afterNumber) &&
           text.ends_with("\nend record\n");
}

}  // namespace

KeyView IndexFile::shape() const {
    KeyView view;
    KeyOfRecord(key.get(), view);
    return view;
}

IndexFile readIndexFile(const std::string& path) {
    IndexFile index;
    index.path = path;
    FileRows rows;
    std::string head;
    if (!rows.open(path) || !rows.read(0, std::size_t{IndexHeaderBytes}, head)) {
        index.wrong = "It cannot be read: " + std::string(os::describe(rows.error()));
        return index;
    }
    const auto [name, text] = TextsOfIndexHeader(head);
    if (name.empty()) {
        index.wrong = "It does not begin as an index file does.";
        return index;
    }
    index.tableName = untilZero(name);
    index.keyText = untilZero(text);
    if (!isPadded(name, index.tableName) || !isPadded(text, index.keyText))
        index.odd = "There are bytes behind the texts in its header.";
    else if (!isUsualText(index.keyText))
        index.odd = "The text of its key has not the usual form.";
    std::string columns = index.keyText;
    TypeInfoStripOuter(columns, MaxTypeInfo);
    KeyView view;
    const bool good = columns != index.keyText && makeRow(columns, index.key) &&
                      KeyOfRecord(index.key.get(), view) &&
                      std::count(columns.begin(), columns.end(), '\n') == view.count;
    ClearError();
    if (good)
        index.fields = fieldNames(columns);
    else
        index.wrong = "The text of its key is damaged or cut.";
    return index;
}

IndexNumbers countNodes(const IndexFile& index) {
    IndexNumbers numbers;
    numbers.recordBytes = IndexRecordSize(index.shape());
    RecordDescriptor root;
    IndexInit(&root);
    const std::int32_t nodes = IndexCount(&root, IndexFileBlock(index.path, index.key.get()));
    const std::int64_t size = os::sizeOf(os::native(index.path));
    if (ErrorCell() == 0) {
        numbers.nodes = nodes;
        numbers.freeRecords =
            static_cast<std::int32_t>((size - IndexHeaderBytes) / numbers.recordBytes) - nodes;
    }
    ClearError();
    return numbers;
}

std::string asideName(const std::string& indexFile) {
    return MarkedIndexName(indexFile, "~i");
}

namespace {

bool isThere(const std::string& path) {
    return os::infoOf(os::native(path)).exists;
}

void fitIndex(IndexBeside& beside, const RowType& type) {
    IndexFile& index = beside.file;
    std::string missing;
    KeyView ofRow;
    beside.keyMap = mapOf(index.fields, type, missing);
    if (!missing.empty())
        index.wrong = "Its key field '" + missing + "' is none of the row.";
    else if (!KeyOfRow(*type.row.get(), beside.keyMap, ofRow) || !SameKeyShape(ofRow, index.shape()) ||
             IndexRecordSize(ofRow) != IndexRecordSize(index.shape()))
        index.wrong = "Its key fields are not of the types that the row has.";
    if (!index.wrong.empty()) beside.keyMap = 0;
}

}  // namespace

std::string ownedBy(const std::string& owner) {
    return "It is that of the table file '" + owner +
           "'; of two files whose names differ in their extension alone only one can have indexes.";
}

std::vector<IndexBeside> indexesBeside(const std::string& file, const RowType& type) {
    std::vector<IndexBeside> found;
    std::size_t last = 0;
    for (std::int32_t n = 1; n <= MaxIndexes; ++n) {
        IndexBeside& beside = found.emplace_back();
        std::string path = IndexFileName(file, n);
        beside.number = n;
        const os::FileInfo own = os::infoOf(os::native(path));
        beside.begun = own.exists && !own.folder && own.size < IndexHeaderBytes;
        beside.aside = (!own.exists || beside.begun) && isThere(asideName(path));
        if (beside.aside) path = asideName(path);
        if (!isThere(path)) continue;
        last = found.size();
        beside.file = readIndexFile(path);
        beside.owner = paths::fileName(OwnerOfIndex(os::native(path), os::native(file)));
        if (!beside.owner.empty())
            beside.file.wrong = ownedBy(beside.owner);
        else if (beside.file.wrong.empty())
            fitIndex(beside, type);
    }
    found.resize(last);
    return found;
}

}  // namespace tarn::datatool
