// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/texts.h"

#include <QStringDecoder>

#include <algorithm>

namespace tarn::platform::qt {

namespace {

qsizetype sizeOf(std::string_view bytes) {
    return static_cast<qsizetype>(bytes.size());
}

bool fitsLatin1(const QString& text) {
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 256; });
}

std::string utf8(const QString& text) {
    const QByteArray bytes = text.toUtf8();
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

std::string latin1(const QString& text) {
    const QByteArray bytes = text.toLatin1();
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

}  // namespace

bool isUtf8(std::string_view bytes) {
    if (std::all_of(bytes.begin(), bytes.end(), [](char c) { return static_cast<signed char>(c) >= 0; }))
        return true;
    return QByteArrayView(bytes.data(), sizeOf(bytes)).isValidUtf8();
}

QString shown(std::string_view bytes) {
    if (isUtf8(bytes)) return QString::fromUtf8(bytes.data(), sizeOf(bytes));
    return QString::fromLatin1(bytes.data(), sizeOf(bytes));
}

std::string bytesOf(const QString& text, std::string_view before) {
    if (shown(before) == text) return std::string(before);
    if (!isUtf8(before) && fitsLatin1(text)) return latin1(text);
    return utf8(text);
}

int byteOffset(const QString& text, int position, std::string_view bytes) {
    const QString head = text.left(std::max(position, 0));
    return static_cast<int>(isUtf8(bytes) ? head.toUtf8().size() : head.size());
}

int textOffset(std::string_view bytes, int offset) {
    const auto head = bytes.substr(0, static_cast<std::size_t>(std::max(offset, 0)));
    if (!isUtf8(bytes)) return static_cast<int>(head.size());
    return static_cast<int>(QString::fromUtf8(head.data(), sizeOf(head)).size());
}

namespace {

// The caption with `mark` for each "&" that marks what follows, and `letter` for each that is shown.
QString withMarks(const QString& caption, QStringView mark, QStringView letter) {
    QString text;
    for (qsizetype i = 0; i < caption.size(); ++i) {
        const QChar next = i + 1 < caption.size() ? caption[i + 1] : QChar();
        if (caption[i] != u'&') {
            text += caption[i];
        } else if (next.isLetterOrNumber()) {
            text += mark;
        } else {
            text += letter;
            if (next == u'&') ++i;
        }
    }
    return text;
}

}  // namespace

QString withoutMnemonic(const QString& caption) {
    return withMarks(caption, u"", u"&");
}

QString marked(const QString& caption) {
    return withMarks(caption, u"&", u"&&");
}

}  // namespace tarn::platform::qt
