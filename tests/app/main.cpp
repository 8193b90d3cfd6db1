// GoogleTest's main() with an application object of the class TEST_APPLICATION.
#include <gtest/gtest.h>

#include <QGuiApplication>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    const TEST_APPLICATION application(argc, argv);
    return RUN_ALL_TESTS();
}
