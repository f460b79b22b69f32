// SPDX-License-Identifier: Apache-2.0
#include "support/sheet_rows.h"

#include "library/designer/propedit_sheet.h"

#include <algorithm>

namespace tarn {

bool showSheet(const std::string& title, const std::string& rows, std::string& outcome) {
    std::string names, options, values;
    for (std::size_t at = 0; at < rows.size();) {
        const std::size_t end = std::min(rows.find('\n', at), rows.size());
        const std::string row = rows.substr(at, end - at);
        at = end + 1;
        const std::size_t first = row.find('|'), second = row.rfind('|');
        if (first == second) return false;
        names += row.substr(0, first) + "\n";
        options += row.substr(first + 1, second - first - 1) + "\n";
        values += row.substr(second + 1) + "\n";
    }
    const bool ok = PROPERTIESDIALOG(title, "", "", names, options, values);
    outcome = (ok ? "OK\n" : "Cancel\n") + values;
    return true;
}

}  // namespace tarn
