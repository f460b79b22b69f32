// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/debugger/debugpictures.h"

#include "platform/qt/drawing/faces.h"

#include <QFile>
#include <QHash>

namespace tarn::platform::qt {

QIcon debugPicture(const QString& name) {
    static QHash<QString, QIcon> known;
    const QString key = name.toLower();
    if (const auto found = known.constFind(key); found != known.constEnd()) return *found;
    QFile file(QStringLiteral(":/debugger/%1.svg").arg(key));
    const QIcon icon = file.open(QIODevice::ReadOnly) ? iconOfBytes(file.readAll()) : QIcon();
    known.insert(key, icon);
    return icon;
}

}  // namespace tarn::platform::qt
