// SPDX-License-Identifier: GPL-3.0-or-later
#include "ide/help/window/collection.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHelpEngine>
#include <QHelpLink>
#include <QStandardPaths>

namespace tarn::help {
namespace {

constexpr int MonthInDays = 30;

QString cacheFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) +
           QStringLiteral("/tarnwick");
}

QString nameFor(const QFileInfo& file) {
    const QString what = file.canonicalFilePath() + u'|' + QString::number(file.size()) + u'|' +
                         QString::number(file.lastModified().toMSecsSinceEpoch());
    const QByteArray hash = QCryptographicHash::hash(what.toUtf8(), QCryptographicHash::Sha1).toHex();
    return QStringLiteral("help-%1.qhc").arg(QString::fromLatin1(hash.left(16)));
}

// Makes a collection that knows the help file. Its time tells when it was made.
bool make(const QString& collection, const QString& file) {
    QHelpEngineCore engine(collection);
    engine.setReadOnly(false);
    return engine.setupData() && engine.registerDocumentation(file);
}

// Collections of help files that were there a month ago, and have changed or gone since.
void removeOld(const QString& folder, const QString& but) {
    const QDateTime limit = QDateTime::currentDateTime().addDays(-MonthInDays);
    for (const QFileInfo& old : QDir(folder).entryInfoList({QStringLiteral("help-*.qhc*")}, QDir::Files))
        if (old.fileName() != but && old.lastModified() < limit) QFile::remove(old.filePath());
}

// The collection in the cache, made if it is not there; empty if the cache cannot be written.
QString inCache(const QFileInfo& file, bool anew) {
    const QString folder = cacheFolder(), name = nameFor(file), path = folder + u'/' + name;
    if (anew) QFile::remove(path);
    if (QFileInfo::exists(path)) return path;
    if (!QDir().mkpath(folder)) return {};
    const QString made = path + u'.' + QString::number(QCoreApplication::applicationPid());
    QFile::remove(made);
    const bool whole = make(made, file.filePath());
    const bool placed = whole && ::rename(QFile::encodeName(made), QFile::encodeName(path)) == 0;
    if (!placed) QFile::remove(made);
    removeOld(folder, name);
    return placed ? path : QString();
}

}  // namespace

Collection::~Collection() = default;

bool Collection::use(const QString& collectionFile, bool readOnly) {
    if (collectionFile.isEmpty()) return false;
    auto engine = std::make_unique<QHelpEngine>(collectionFile);
    engine->setReadOnly(readOnly);
    engine->setUsesFilterEngine(true);
    if (!engine->setupData() || !engine->registeredDocumentations().contains(space_)) return false;
    if (engine->files(space_, QString()).isEmpty()) return false;
    engine_ = std::move(engine);
    return true;
}

std::unique_ptr<Collection> Collection::open(const QString& file, QString& problem) {
    std::unique_ptr<Collection> opened(new Collection);
    opened->space_ = QHelpEngineCore::namespaceName(file);
    if (opened->space_.isEmpty()) {
        problem = QCoreApplication::translate("help", "It is damaged, or no compiled help.");
        return nullptr;
    }
    const QFileInfo info(file);
    if (opened->use(inCache(info, false), true) || opened->use(inCache(info, true), true)) return opened;
    opened->own_ = std::make_unique<QTemporaryDir>();
    const QString own = opened->own_->filePath(nameFor(info));
    if (opened->own_->isValid() && make(own, file) && opened->use(own, true)) return opened;
    problem = QCoreApplication::translate("help", "Neither %1 nor the temporary folder can be written.")
                  .arg(cacheFolder());
    return nullptr;
}

QUrl Collection::pageOf(const QString& topic) const {
    const QList<QHelpLink> links =
        engine_->documentsForIdentifier(topic.trimmed().replace(u' ', u'_').toLower());
    return links.isEmpty() ? QUrl() : links.constFirst().url;
}

QUrl Collection::pageOfKeyword(const QString& keyword) const {
    const QList<QHelpLink> links = engine_->documentsForKeyword(keyword);
    return links.isEmpty() ? QUrl() : links.constFirst().url;
}

QUrl Collection::page(const QString& name) const {
    return QUrl(QStringLiteral("qthelp://%1/help/%2").arg(space_, name));
}

QList<QUrl> Collection::pages() const {
    return engine_->files(space_, QString(), QStringLiteral("htm"));
}

QByteArray Collection::text(const QUrl& page) const {
    return engine_->fileData(page);
}

}  // namespace tarn::help
