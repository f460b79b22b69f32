// SPDX-License-Identifier: Apache-2.0
//
// Sorting moves descriptors; the texts stay in their blocks. A heap sort keeps within the list whatever the
// comparison says, should a descriptor be damaged, and needs no memory.
#include "kernel/list_access.h"
#include "kernel/strings.h"

#include <algorithm>

namespace tarn {

void ListSort(ListDescriptor* l, bool ascending, bool ignoreCase) {
    if (!AcceptStringList(l) || l->count < 2) return;
    auto* first = reinterpret_cast<StringDescriptor*>(At(l->data));
    const auto before = [=](const StringDescriptor& a, const StringDescriptor& b) {
        std::int32_t result = 0;
        StringCompare(&a, &b, ignoreCase, result);
        return ascending ? result < 0 : result > 0;
    };
    std::make_heap(first, first + l->count, before);
    std::sort_heap(first, first + l->count, before);
}

std::int32_t ListStringFind(const ListDescriptor* l, const StringDescriptor* text, bool ignoreCase) {
    if (!AcceptStringList(l) || !AcceptElement(*l, text, KindString)) return 0;
    for (std::int32_t i = 0; i < l->count; ++i) {
        std::int32_t result = 0;
        StringCompare(reinterpret_cast<const StringDescriptor*>(SlotAt(*l, i)), text, ignoreCase, result);
        if (result == 0) return i + 1;
    }
    return 0;
}

}  // namespace tarn
