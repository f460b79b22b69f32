// SPDX-License-Identifier: GPL-3.0-or-later
//
// The page that is read: a text browser over the pages of a collection, in the colours of the palette. It follows a
// change of the palette and stays where it was read.
#pragma once

#include "ide/help/window/collection.h"

#include <QHash>
#include <QTextBrowser>
#include <QUrl>

namespace tarn::help {

class Page : public QTextBrowser {
public:
    explicit Page(QWidget* parent);
    void setCollection(const Collection* collection) { collection_ = collection; }
    void show(const QUrl& url);          // remembered, so that Back leads away from it
    void showText(const QString& html);  // a page of its own, such as "nothing was found"
    // Marks where words begin so in the text, and shows the first place.
    void mark(const QStringList& words);
    void zoom(int steps);  // from the size of the desktop's font
    int zoomSteps() const { return steps_; }
    // The text as it is printed: black on white, whatever the palette is.
    std::unique_ptr<QTextDocument> printable() const;

    QVariant loadResource(int type, const QUrl& name) override;

protected:
    void changeEvent(QEvent* event) override;

private:
    void restyle();

    const Collection* collection_ = nullptr;
    QHash<QUrl, QString> own_;  // the texts of pages that are none of the collection
    int steps_ = 0;
    bool styling_ = false;
};

}  // namespace tarn::help
