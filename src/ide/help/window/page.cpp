// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/help/window/page.h"

#include <QApplication>
#include <QEvent>
#include <QScrollBar>
#include <QTextDocument>

#include <algorithm>

namespace tarn::help {
namespace {

constexpr int MostSteps = 12;
constexpr qsizetype MostMarks = 500;

QColor mixed(const QColor& a, const QColor& b, int percentOfB) {
    const auto mix = [percentOfB](int x, int y) { return (x * (100 - percentOfB) + y * percentOfB) / 100; };
    return {mix(a.red(), b.red()), mix(a.green(), b.green()), mix(a.blue(), b.blue())};
}

QString styleFor(const QColor& base, const QColor& text, const QColor& link) {
    const QString ground = mixed(base, text, 7).name(), line = mixed(base, text, 30).name();
    const bool dark = base.lightness() < 128;
    return QStringLiteral("a { color: %1; text-decoration: none; }"
                          "h1 { font-size: 160%; font-weight: 600; }"
                          "h2, h3 { font-size: 115%; font-weight: 600; }"
                          "p.message { font-weight: 600; }"
                          "pre { background-color: %2; font-family: monospace; white-space: pre-wrap; }"
                          "code { font-family: monospace; }"
                          "pre.wrong { color: %4; } pre.right { color: %5; }"
                          "kbd { font-family: monospace; font-weight: 600; }"
                          "td, th { padding: 3px 14px 3px 0px; }"
                          "th { text-align: left; border-bottom: 1px solid %3; }"
                          "dt { font-weight: 600; }")
        .arg(link.name(), ground, line, QLatin1String(dark ? "#ff9a8a" : "#a02010"),
             QLatin1String(dark ? "#8fd0a0" : "#18632a"));
}

}  // namespace

Page::Page(QWidget* parent) : QTextBrowser(parent) {
    setOpenExternalLinks(false);
    setAccessibleName(tr("Page"));
    document()->setDocumentMargin(16);
    restyle();
}

QVariant Page::loadResource(int type, const QUrl& name) {
    if (type == QTextDocument::StyleSheetResource || collection_ == nullptr) return {};
    if (name.scheme() == QLatin1String("own")) return own_.value(name);
    return QString::fromUtf8(collection_->text(name));
}

void Page::show(const QUrl& url) {
    setSource(url);
}

void Page::showText(const QString& html) {
    const QUrl url(QStringLiteral("own:%1").arg(qHash(html)));
    own_[url] = html;
    setSource(url);
}

void Page::mark(const QStringList& words) {
    QList<QTextEdit::ExtraSelection> marks;
    const QString text = document()->toPlainText();
    QTextCharFormat format;
    format.setBackground(mixed(palette().color(QPalette::Base), palette().color(QPalette::Highlight), 35));
    int first = -1;
    for (const QString& word : words) {
        for (qsizetype at = 0; (at = text.indexOf(word, at, Qt::CaseInsensitive)) >= 0; at += word.size()) {
            if (at > 0 && text[at - 1].isLetterOrNumber()) continue;
            QTextCursor place(document());
            place.setPosition(int(at));
            place.setPosition(int(at + word.size()), QTextCursor::KeepAnchor);
            if (marks.size() < MostMarks) marks.append({place, format});
            if (first < 0 || at < first) first = int(at);
        }
    }
    setExtraSelections(marks);
    if (first < 0) return;
    QTextCursor start(document());
    start.setPosition(first);
    setTextCursor(start);
    ensureCursorVisible();
}

void Page::zoom(int steps) {
    const int wanted = std::clamp(steps, -MostSteps / 2, MostSteps);
    if (wanted > steps_) zoomIn(wanted - steps_);
    if (wanted < steps_) zoomOut(steps_ - wanted);
    steps_ = wanted;
}

std::unique_ptr<QTextDocument> Page::printable() const {
    auto copy = std::make_unique<QTextDocument>();
    copy->setDefaultStyleSheet(styleFor(Qt::white, Qt::black, QColor(0, 0, 160)));
    copy->setHtml(source().scheme() == QLatin1String("own") || collection_ == nullptr
                      ? own_.value(source())
                      : QString::fromUtf8(collection_->text(source())));
    return copy;
}

void Page::restyle() {
    const QPalette colours = palette();
    document()->setDefaultStyleSheet(styleFor(colours.color(QPalette::Base), colours.color(QPalette::Text),
                                              colours.color(QPalette::Link)));
    if (source().isEmpty()) return;
    const int read = verticalScrollBar()->value();
    reload();
    verticalScrollBar()->setValue(read);
}

void Page::changeEvent(QEvent* event) {
    QTextBrowser::changeEvent(event);
    if (event->type() != QEvent::PaletteChange || styling_) return;
    styling_ = true;
    restyle();
    styling_ = false;
}

}  // namespace tarn::help
