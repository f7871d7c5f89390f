// testing/testmain.cpp: the main() of every test program.
//
// Widget tests need a QApplication, and CI has no display, so the offscreen platform is
// chosen unless the caller picked another.
#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char **argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
