// SPDX-License-Identifier: Apache-2.0
//
// Between the bytes of the model and the texts that Qt shows. Bytes that are valid UTF-8 are shown as such,
// any other bytes as Latin-1. The way back keeps the encoding in which the text came, and bytes that nobody
// changed. Cost: linear; short texts of plain ASCII take the fast road of Qt's own conversion.
#pragma once

#include <QString>

#include <string>
#include <string_view>

namespace tarn::platform::qt {

// The private format of the clipboard and of drops that carries a text's bytes as they are, beside the text that other
// programs understand, which has neither NUL nor anything that is no UTF-8.
inline constexpr char BytesType[] = "application/x-tarnwick-bytes";

bool isUtf8(std::string_view bytes);
QString shown(std::string_view bytes);

// The bytes for `text`, which the user made out of `before`: unchanged texts give `before` itself, and a text
// that came as Latin-1 stays Latin-1 as long as it can.
std::string bytesOf(const QString& text, std::string_view before = {});

// Between a 0-based position in the shown text (UTF-16 units) and the 0-based byte position in `bytes`.
int byteOffset(const QString& text, int position, std::string_view bytes);
int textOffset(std::string_view bytes, int offset);

// In a caption a "&" before a letter or a digit marks it, and "&&" is a "&". Any other "&" stands for itself, whereas the
// toolkit takes it for a mark too.
QString withoutMnemonic(const QString& caption);  // "E&xit" gives "Exit", "a && b" and "a & b" give "a & b"
QString marked(const QString& caption);           // for the toolkit: "a & b" gives "a && b", "E&xit" itself

}  // namespace tarn::platform::qt
