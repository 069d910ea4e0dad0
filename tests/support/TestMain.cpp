// The main of every test program. It pins the environment that the tests' exact pixels and metrics
// depend on before any Qt application object exists: the offscreen platform (test discovery runs the
// binary without CTest's environment), 96 pixels per inch and no high-DPI scaling. It also installs
// the guard that fails a test which leaves one of the library's globals changed.

#include "support/GlobalsGuard.h"

#include <QApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_FONT_DPI", "96");
    qputenv("QT_ENABLE_HIGHDPI_SCALING", "0");
    qputenv("QT_SCALE_FACTOR", "1");
    ::testing::InitGoogleTest(&argc, argv);
    // Appended after the default printer, so its end-of-test check runs before the printer reports.
    ::testing::UnitTest::GetInstance()->listeners().Append(new vl::test::TGlobalsGuard);
    QApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
