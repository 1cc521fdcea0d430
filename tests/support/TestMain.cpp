#include "platform/Animations.h"

#include <QApplication>
#include <gtest/gtest.h>

// Every test program runs inside one QApplication on the offscreen platform, with animations that
// finish at once so screens can be driven step by step.
int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    ::testing::InitGoogleTest(&argc, argv);
    QApplication app(argc, argv);
    Animations::setInstant(true);
    return RUN_ALL_TESTS();
}
