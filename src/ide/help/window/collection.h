// SPDX-License-Identifier: GPL-3.0-or-later
//
// A compiled help file, opened by the help engine. The engine wants a collection, a small database about help files;
// it is made once for a help file in the user's cache ($XDG_CACHE_HOME/tarnwick) under a name that tells the file, its
// size and its time, and only read from then on. So the help file may be read-only, and several environments share
// one collection: each is made under a name of its own and then takes the shared one. A collection that cannot be
// read, or does not know the help, is made anew; where there is no place for it, it lasts as long as the window.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QTemporaryDir>
#include <QUrl>

#include <memory>

class QHelpEngine;

namespace tarn::help {

class Collection {
public:
    // Null, with the reason in `problem`, for a file that is no compiled help.
    static std::unique_ptr<Collection> open(const QString& file, QString& problem);
    ~Collection();

    QHelpEngine& engine() { return *engine_; }
    QUrl pageOf(const QString& topic) const;           // empty if there is none; "_" or a blank, any case
    QUrl pageOfKeyword(const QString& keyword) const;  // of the index
    QUrl page(const QString& name) const;              // by its name in the help
    QList<QUrl> pages() const;
    QByteArray text(const QUrl& page) const;

private:
    Collection() = default;
    bool use(const QString& collectionFile, bool readOnly);

    QString space_;
    std::unique_ptr<QTemporaryDir> own_;  // of a collection that nothing keeps
    std::unique_ptr<QHelpEngine> engine_;
};

}  // namespace tarn::help
