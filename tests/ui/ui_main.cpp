// SPDX-License-Identifier: Apache-2.0
//
// The application object of all tests with widgets; the view uses the one that is there.
#include <gtest/gtest.h>

#include <QApplication>

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1");
    ::testing::InitGoogleTest(&argc, argv);
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QApplication application(argc, argv);
    QApplication::setStyle(QStringLiteral("fusion"));
    return RUN_ALL_TESTS();
}
