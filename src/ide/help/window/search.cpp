// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/help/window/search.h"

#include <algorithm>

namespace tarn::help {
namespace {

constexpr int WholeTitle = 10000, InTitle = 1000, MostTimes = 100;

// How often a word of the text begins so.
int beginnings(const QString& text, const QString& word) {
    int count = 0;
    for (qsizetype at = 0; (at = text.indexOf(word, at)) >= 0; at += word.size())
        count += at == 0 || !text[at - 1].isLetterOrNumber();
    return count;
}

QString plain(const QString& html) {
    QString out;
    bool tag = false;
    for (const QChar c : html) {
        if (c == u'<') tag = true;
        if (!tag) out += c;
        if (c != u'>') continue;
        tag = false;
        out += u' ';
    }
    return out.replace(QStringLiteral("&lt;"), QStringLiteral("<"))
        .replace(QStringLiteral("&gt;"), QStringLiteral(">"))
        .replace(QStringLiteral("&quot;"), QStringLiteral("\""))
        .replace(QStringLiteral("&amp;"), QStringLiteral("&"));
}

QString between(const QString& text, const QString& open, const QString& close) {
    const qsizetype begin = text.indexOf(open);
    if (begin < 0) return {};
    const qsizetype end = text.indexOf(close, begin + open.size());
    return text.mid(begin + open.size(), end - begin - open.size());
}

}  // namespace

void Search::read() {
    for (const QUrl& url : collection_.pages()) {
        const QString html = QString::fromUtf8(collection_.text(url));
        const QString body = between(html, QStringLiteral("<body>"), QStringLiteral("</body>"));
        const QString title = plain(between(html, QStringLiteral("<title>"), QStringLiteral("</title>")));
        pages_.push_back({url, title.trimmed(), plain(body).toLower()});
    }
}

std::vector<Hit> Search::find(const QString& words) {
    if (pages_.empty()) read();
    std::vector<Hit> hits;
    QStringList wanted = words.toLower().split(u' ', Qt::SkipEmptyParts);
    if (wanted.isEmpty()) return hits;
    const QString whole = wanted.join(u' ');
    wanted.removeDuplicates();
    for (const Page& page : pages_) {
        const QString title = page.title.toLower();
        Hit hit{page.url, page.title, title == whole ? WholeTitle : 0};
        bool all = true;
        for (const QString& word : wanted) {
            const int times = beginnings(page.text, word), titled = beginnings(title, word);
            all = times + titled > 0;
            if (!all) break;
            hit.weight += std::min(times, MostTimes) + (titled > 0 ? InTitle : 0);
        }
        if (all) hits.push_back(hit);
    }
    std::stable_sort(hits.begin(), hits.end(),
                     [](const Hit& a, const Hit& b) { return a.weight > b.weight; });
    return hits;
}

}  // namespace tarn::help
