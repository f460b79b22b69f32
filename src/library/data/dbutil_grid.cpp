// SPDX-License-Identifier: Apache-2.0
#include "library/data/dbutil_grid.h"

#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/lists/lists.h"
#include "kernel/values/arrays.h"
#include "kernel/values/owned.h"
#include "kernel/values/records.h"
#include "kernel/values/string_text.h"
#include "library/system/longwork.h"
#include "library/system/system.h"
#include "os/text/ascii.h"

#include <algorithm>
#include <charconv>

MODULE("dbutil", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

// ---- cells ----

std::vector<std::string> cellsOf(std::string_view line) {
    std::vector<std::string> cells;
    for (;;) {
        const std::size_t end = line.find('\t');
        cells.emplace_back(line.substr(0, end));
        if (end == std::string_view::npos) return cells;
        line.remove_prefix(end + 1);
    }
}

std::string joined(const std::vector<std::string>& cells) {
    std::string line;
    for (const std::string& cell : cells) {
        if (&cell != &cells.front()) line += '\t';
        line += cell;
    }
    return line;
}

// What would end a cell or a row becomes a blank.
void appendPrintable(std::string_view text, std::string& line) {
    constexpr unsigned char firstPrintable = ' ', del = 127;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        line += byte < firstPrintable || byte == del ? ' ' : c;
    }
}

std::string_view withoutPadding(std::string_view characters) {
    const std::size_t last = characters.find_last_not_of(std::string_view("\0 ", 2));
    return characters.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

// The shortest text that reads as the same number.
void appendReal(double value, std::string& line) {
    char digits[32];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), value).ptr;
    line.append(digits, end);
}

// Calls `visit` with the text of a table's description from each field on.
template <class Visit>
void eachField(const TableDescriptor* table, Visit visit) {
    const std::string description(NarrowText(TableTypeInfo(table)).view());
    for (std::size_t position = 0; position < description.size();) {
        const std::size_t start = position;
        const std::int32_t kind = TypeInfoToValue(description, position, nullptr);
        if (IsValueKind(kind)) visit(std::string_view(description).substr(start));
        if (position == start) break;
    }
}

// Turns the rows of a table into lines.
class RowText {
public:
    // Enums whose type is Tchar are characters, as the deletion mark of Xbase rows.
    RowText(int firstField, const TableDescriptor* table) : firstField_(firstField) {
        eachField(table, [this](std::string_view line) {
            characters_.push_back(ascii::equal(TypeInfoParseLine(line, 1).typeName, "Tchar"));
        });
    }

    const std::string& of(const RecordDescriptor* row) {
        line_.clear();
        const int fields = FieldCountOf(row->kinds);
        for (int n = firstField_; n <= fields; ++n) {
            if (n > firstField_) line_ += '\t';
            append(row, n);
        }
        return line_;
    }

private:
    void append(const RecordDescriptor* row, int n) {
        const void* const field = RecordFieldAddress(row, n);
        const Kind kind = FieldKindAt(row->kinds, n);
        if (field == nullptr) return;
        if (kind == KindReal) return appendReal(ReadAt<double>(field), line_);
        if (kind == KindString) return appendString(static_cast<const StringDescriptor*>(field));
        if (kind == KindArray) return appendCharacters(static_cast<const ArrayDescriptor*>(field));
        if (kind == KindEnum && isCharacter(n))
            return appendPrintable({static_cast<const char*>(field), 1}, line_);
        if (kind > KindSet || kind == KindRecord || kind == KindUnion)
            return;  // a column holds no such value
        RecordGetAsText(row, n, text_.get());
        appendPrintable(NarrowText(text_.get()).view(), line_);
    }
    [[nodiscard]] bool isCharacter(int n) const {
        const auto index = static_cast<std::size_t>(n - 1);
        return index < characters_.size() && characters_[index];
    }
    void appendString(const StringDescriptor* text) {
        if (StringIsNull(text)) {
            line_ += "NULL";
            return;
        }
        appendPrintable(NarrowText(text).view(), line_);
    }
    void appendCharacters(const ArrayDescriptor* array) {
        if (!ArrayIsCharacters(array)) return;
        const std::string_view bytes(At(array->data), static_cast<std::size_t>(array->size));
        appendPrintable(withoutPadding(bytes), line_);
    }

    int firstField_;
    std::vector<bool> characters_;
    String text_;
    std::string line_;
};

// ---- rows ----

// Calls `visit` with each row until it gives false.
template <class Visit>
void eachRow(const TableDescriptor* table, Visit visit) {
    RecordValue row, key;
    bool found = false;
    if (TableIndexCount(table) == 0) {
        const ListDescriptor* const rows = TableRows(table);
        const bool inFile = ListIsInFile(rows);
        const int count = TableCount(table);
        for (int n = 1; n <= count; ++n) {
            if (inFile) TableRow(table, n, row.get());
            const void* const at = inFile ? row.get() : ListRef(rows, n);
            if (!visit(static_cast<const RecordDescriptor*>(at))) return;
        }
        return;
    }
    for (TableFind("FIRST", table, 1, key.get(), row.get(), found); found;
         TableFind("NEXT", table, 1, key.get(), row.get(), found)) {
        if (!visit(row.get())) return;
        TableKeyFromRow(table, 1, row.get(), key.get());
    }
}

// The cell at `position` of a row, and the row split; nothing for a column or a row that is not there.
struct Cell {
    int position = 0;
    std::vector<std::string> cells;
};

Cell cellAt(const Object& control, int row, std::string_view column) {
    if (row < 1 || row > GetListCount(control)) return {};
    const int position = GETCOLUMNPOSITION(control, column);
    if (position == 0) return {};
    return {position, cellsOf(GetList(control, row))};
}

std::string valueOf(const std::vector<std::string>& cells, int position) {
    const auto index = static_cast<std::size_t>(position - 1);
    return index < cells.size() ? cells[index] : std::string();
}

}  // namespace

std::vector<std::string> TABLEFIELDNAMES(const TableDescriptor* table) {
    FRAME(TABLEFIELDNAMES);
    STAMP();
    std::vector<std::string> names;
    if (TableRows(table) == nullptr) return names;
    eachField(table, [&](std::string_view line) { names.push_back(TypeInfoName(line, 1)); });
    const auto* const shape = reinterpret_cast<const RecordDescriptor*>(At(TableRows(table)->prototype));
    names.resize(shape != nullptr ? static_cast<std::size_t>(FieldCountOf(shape->kinds)) : names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
        names[i] = STRREMOVEQUOTES(names[i]);
        if (names[i].empty()) names[i] = "FIELD" + STR(static_cast<int>(i) + 1);
    }
    return names;
}

bool FILLLISTBOX(const Object& control, bool hideFirst, int startColumn, std::string_view titles,
                 const TableDescriptor* table) {
    FRAME(FILLLISTBOX);
    STAMP();
    Clear(control);
    const int count = TableCount(table);  // tells what is no table
    const int first = std::max(startColumn, hideFirst ? 2 : 1);
    std::vector<std::string> names = TABLEFIELDNAMES(table);
    STAMP();
    names.erase(names.begin(), names.begin() + std::min<std::ptrdiff_t>(first - 1, std::ssize(names)));
    SetCaption(control, titles.empty() ? joined(names) : std::string(titles));
    if (TableRows(table) == nullptr || !IsLoaded(control)) return true;
    RowText text(first, table);
    LongWork work("Showing the rows");
    int row = 0;
    eachRow(table, [&](const RecordDescriptor* record) {
        AddItem(control, text.of(record));
        return work.go(++row, count) && IsLoaded(control);
    });
    return !work.stopped();
}

std::vector<std::string> GETCOLUMNPOSITIONS(const Object& control) {
    FRAME(GETCOLUMNPOSITIONS);
    STAMP();
    const std::string caption = GetCaption(control);
    std::string_view line = caption;
    if (line.starts_with('\t')) line.remove_prefix(1);
    if (line.ends_with('\t')) line.remove_suffix(1);
    std::vector<std::string> names;
    if (line.empty()) return names;
    for (const std::string& cell : cellsOf(line)) names.push_back(STRTRIM(cell));
    return names;
}

int GETCOLUMNPOSITION(const Object& control, std::string_view column) {
    FRAME(GETCOLUMNPOSITION);
    STAMP();
    const std::string wanted = STRTRIM(column);
    if (wanted.empty()) return 0;
    const std::vector<std::string> names = GETCOLUMNPOSITIONS(control);
    const auto found = std::find_if(names.begin(), names.end(),
                                    [&](const std::string& name) { return STREQUAL(name, wanted); });
    return found == names.end() ? 0 : static_cast<int>(found - names.begin()) + 1;
}

std::string GETLISTCOLUMNVALUE(const Object& control, int row, std::string_view column) {
    FRAME(GETLISTCOLUMNVALUE);
    STAMP();
    const Cell cell = cellAt(control, row, column);
    return cell.position == 0 ? std::string() : valueOf(cell.cells, cell.position);
}

std::vector<std::string> GETLISTCOLUMNVALUES(const Object& control, std::string_view column) {
    FRAME(GETLISTCOLUMNVALUES);
    STAMP();
    std::vector<std::string> values;
    const int position = GETCOLUMNPOSITION(control, column);
    if (position == 0) return values;
    const int rows = GetListCount(control);
    for (int row = 1; row <= rows; ++row) values.push_back(valueOf(cellsOf(GetList(control, row)), position));
    return values;
}

void SETLISTCOLUMNVALUE(const Object& control, int row, std::string_view column, std::string_view value) {
    FRAME(SETLISTCOLUMNVALUE);
    STAMP();
    Cell cell = cellAt(control, row, column);
    if (cell.position == 0) return;
    const auto index = static_cast<std::size_t>(cell.position - 1);
    if (index >= cell.cells.size()) cell.cells.resize(index + 1);
    cell.cells[index].clear();
    appendPrintable(value, cell.cells[index]);
    SetList(control, row, joined(cell.cells));
}

}  // namespace tarn
