// SPDX-License-Identifier: Apache-2.0
//
// Sorting moves descriptors; the texts stay in their blocks. A heap sort keeps within the list whatever the
// comparison says, should a descriptor be damaged, and needs no memory. The texts of a list in a file are
// read first, and written in their order into a file that takes the place of the old one: so there is no
// moment in which one of them stands twice and another nowhere.
#include "kernel/lists/list_access.h"
#include "kernel/lists/rowformat.h"
#include "kernel/values/strings.h"

#include <algorithm>
#include <vector>

namespace tarn {

namespace {

template <class Text>
void sortTexts(Text* first, std::int32_t count, bool ascending, bool ignoreCase) {
    const auto before = [=](const StringDescriptor& a, const StringDescriptor& b) {
        std::int32_t result = 0;
        StringCompare(&a, &b, ignoreCase, result);
        return ascending ? result < 0 : result > 0;
    };
    std::make_heap(first, first + count, before);
    std::sort_heap(first, first + count, before);
}

// Copies of the texts of a file; freed at the end.
class Texts {
public:
    ~Texts() {
        for (StringDescriptor& text : texts_) StringFree(&text);
    }
    bool read(const ListDescriptor& l) {
        texts_.reserve(static_cast<std::size_t>(l.count));
        ListReader elements(l);
        for (std::int32_t i = 0; i < l.count; ++i) {
            const auto* const text = static_cast<const StringDescriptor*>(elements.at(i));
            if (text == nullptr) return false;
            StringInit(&texts_.emplace_back(), UNBOUNDED);
            if (!CopyValue(text, &texts_.back(), KindString)) return false;
        }
        return true;
    }
    void sort(bool ascending, bool ignoreCase) {
        sortTexts(texts_.data(), static_cast<std::int32_t>(texts_.size()), ascending, ignoreCase);
    }
    bool write(ListDescriptor& rows) const {
        return std::all_of(texts_.begin(), texts_.end(), [&](const StringDescriptor& text) {
            const ShapedElement shaped(rows, &text, KindString);
            return shaped.good() && AppendRow(rows, shaped.at());
        });
    }

private:
    std::vector<StringDescriptor> texts_;
};

void sortFile(ListDescriptor& l, bool ascending, bool ignoreCase) {
    WithMemory([&] {
        Texts texts;
        if (!AcceptRows(l) || !texts.read(l)) return false;
        texts.sort(ascending, ignoreCase);
        RowsBeside beside(l);
        return beside.make() && texts.write(beside.rows()) && beside.takePlace();
    });
}

}  // namespace

void ListSort(ListDescriptor* l, bool ascending, bool ignoreCase) {
    if (!AcceptStringList(l) || l->count < 2) return;
    if (IsHeldInFile(*l)) return sortFile(*l, ascending, ignoreCase);
    sortTexts(reinterpret_cast<StringDescriptor*>(At(l->data)), l->count, ascending, ignoreCase);
}

std::int32_t ListStringFind(const ListDescriptor* l, const StringDescriptor* text, bool ignoreCase) {
    if (!AcceptStringList(l) || !AcceptElement(*l, text, KindString)) return 0;
    ListReader elements(*l);
    for (std::int32_t i = 0; i < l->count; ++i) {
        std::int32_t result = 0;
        const auto* const element = static_cast<const StringDescriptor*>(elements.at(i));
        if (element == nullptr) return 0;
        StringCompare(element, text, ignoreCase, result);
        if (result == 0) return i + 1;
    }
    return 0;
}

}  // namespace tarn
