// GoogleTest's main() with an application object that needs no display.
#include <gtest/gtest.h>

#include <QGuiApplication>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "minimal"); // the platform "offscreen" leaks memory
    const QGuiApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
