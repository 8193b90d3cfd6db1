#include "app/hidcontroller.h"
#include "tests/support/temp_directory.h"

namespace {

namespace fs = std::filesystem;

// As the host does it.
void resetWith(const std::string& home)
{
    setenv("RKB_HOME", home.c_str(), 1);
    IKXHost* const host = CreateKXHost(&HidController::instance());
    host->ResetTrace();
    DestroyKXHost(host);
    unsetenv("RKB_HOME");
}

TEST(LocalTrace, ResetCreatesOrEmptiesTheFileOfAHomeWithLogs)
{
    const test::TempDirectory directory;
    const std::string file = "/logs/kxhost.log";
    for (const size_t length : {255u, 256u}) { // of the path: the second is too long
        const size_t others = directory.path().size() + file.size();
        const std::string home = directory.path() + std::string(length - others, 'x');
        fs::create_directories(home + "/logs");
        resetWith(home);
        EXPECT_EQ(fs::exists(home + file), length == 255);
        std::ofstream(home + file) << "earlier\n";
        resetWith(home);
        EXPECT_EQ(test::content(home + file), length == 255 ? "" : "earlier\n");
    }
}

} // namespace
