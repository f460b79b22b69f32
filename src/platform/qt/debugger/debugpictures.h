// SPDX-License-Identifier: Apache-2.0
//
// The pictures of the debugger's window. They are part of this library, since a program carries no file with them; they
// follow the palette as all drawn pictures do.
#pragma once

#include <QIcon>
#include <QString>

namespace tarn::platform::qt {

QIcon debugPicture(const QString& name);  // any case; the null icon if there is none

}  // namespace tarn::platform::qt
