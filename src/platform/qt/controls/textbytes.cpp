// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/controls/textbytes.h"

#include "platform/qt/texts.h"

#include <algorithm>

namespace tarn::platform::qt {

namespace {

// One step through a text: its bytes, and the positions that it takes in a widget.
struct Step {
    std::size_t bytes;
    int positions;
};

Step stepAt(std::string_view bytes, std::size_t at, bool utf8, bool joinsEnds) {
    const auto c = static_cast<unsigned char>(bytes[at]);
    if (joinsEnds && c == '\r' && at + 1 < bytes.size() && bytes[at + 1] == '\n') return {2, 1};
    if (!utf8 || c < 0x80) return {1, 1};
    if (c >= 0xF0) return {4, 2};
    return {c >= 0xE0 ? 3U : 2U, 1};
}

// The mark of UTF-8 at the start of a text is not shown.
std::size_t markOf(std::string_view bytes, bool utf8) {
    return utf8 && bytes.substr(0, 3) == "\xEF\xBB\xBF" ? 3 : 0;
}

bool isAscii(std::string_view bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](char c) { return static_cast<signed char>(c) >= 0; });
}

std::string utf8OfLatin1(std::string_view bytes) {
    return QString::fromLatin1(bytes.data(), static_cast<qsizetype>(bytes.size())).toStdString();
}

// Appends a text whose first line end must not become one with the CR before it.
void append(std::string& out, std::string_view more) {
    if (!out.empty() && out.back() == '\r' && !more.empty() && more.front() == '\n') out += '\r';
    out += more;
}

}  // namespace

std::size_t byteOf(std::string_view bytes, int position, bool joinsEnds) {
    const bool utf8 = isUtf8(bytes);
    std::size_t at = markOf(bytes, utf8);
    while (at < bytes.size() && position > 0) {
        const Step step = stepAt(bytes, at, utf8, joinsEnds);
        at += step.bytes;
        position -= step.positions;
    }
    return at;
}

int positionOf(std::string_view bytes, int byte, bool joinsEnds) {
    const bool utf8 = isUtf8(bytes);
    const auto stop = std::min(static_cast<std::size_t>(std::max(byte, 0)), bytes.size());
    int position = 0;
    for (std::size_t at = markOf(bytes, utf8); at < stop;) {
        const Step step = stepAt(bytes, at, utf8, joinsEnds);
        at += step.bytes;
        position += step.positions;
    }
    return position;
}

bool everyEndIsPair(std::string_view bytes) {
    bool any = false;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (bytes[i] == '\r' && i + 1 < bytes.size() && bytes[i + 1] == '\n')
            ++i, any = true;
        else if (bytes[i] == '\r' || bytes[i] == '\n')
            return false;
    }
    return any;
}

std::string merged(std::string_view before, const QString& old, const QString& now) {
    const qsizetype common = std::min(old.size(), now.size());
    qsizetype head = 0, tail = 0;
    while (head < common && old[head] == now[head]) ++head;
    if (head > 0 && old[head - 1].isHighSurrogate()) --head;
    while (tail < common - head && old[old.size() - 1 - tail] == now[now.size() - 1 - tail]) ++tail;
    if (tail > 0 && old[old.size() - tail].isLowSurrogate()) --tail;
    QString middle = now.mid(head, now.size() - head - tail);
    if (everyEndIsPair(before)) middle.replace(u'\n', QStringLiteral("\r\n"));
    std::string_view first = before.substr(0, byteOf(before, static_cast<int>(head), true));
    std::string_view last = before.substr(byteOf(before, static_cast<int>(old.size() - tail), true));
    const std::string added = bytesOf(middle, before);
    std::string firstAnew, lastAnew;
    if (!isUtf8(before) && isUtf8(added) && !isAscii(added)) {  // Latin-1 cannot hold what was added
        first = firstAnew = utf8OfLatin1(first);
        last = lastAnew = utf8OfLatin1(last);
    }
    std::string out(first);
    append(out, added);
    append(out, last);
    return out;
}

}  // namespace tarn::platform::qt
