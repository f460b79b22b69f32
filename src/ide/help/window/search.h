// SPDX-License-Identifier: GPL-3.0-or-later
//
// Full-text search. The pages are few and small, so they are read once, when somebody searches first, and looked
// through at each search: about a millisecond, and there is no index that could be out of date or damaged.
#pragma once

#include "ide/help/window/collection.h"

#include <QStringList>

#include <vector>

namespace tarn::help {

struct Hit {
    QUrl page;
    QString title;
    int weight = 0;
};

class Search {
public:
    explicit Search(const Collection& collection) : collection_(collection) {}
    // The pages that hold all of the words, or beginnings of words, best first: those that have them in their titles
    // ahead of those that have them often.
    std::vector<Hit> find(const QString& words);

private:
    struct Page {
        QUrl url;
        QString title, text;  // the text in lower case
    };
    void read();

    const Collection& collection_;
    std::vector<Page> pages_;
};

}  // namespace tarn::help
