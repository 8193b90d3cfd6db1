// GoogleTest's main() with Qt's application, of the kind that the program's CMakeLists.txt names.
#include <gtest/gtest.h>

#include <QGuiApplication>

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    const TEST_APPLICATION application(argc, argv);
    return RUN_ALL_TESTS();
}
