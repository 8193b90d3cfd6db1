#include "app/hidcontroller.h"
#include "base/src/trace.h"
#include "tests/support/temp_directory.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

namespace fs = std::filesystem;

// Makes a home of this path with a trace of eight bytes. Returns the trace's path.
fs::path makeHome(const fs::path& home)
{
    fs::create_directories(home / "logs");
    std::ofstream(home / "logs/kxhost.log") << "earlier\n";
    return home / "logs/kxhost.log";
}

// As the host does it.
void resetWith(const fs::path& home)
{
    setenv("RKB_HOME", home.c_str(), 1);
    IKXHost* host = CreateKXHost(&HidController::instance());
    host->ResetTrace();
    DestroyKXHost(host);
    unsetenv("RKB_HOME");
}

TEST(LocalTrace, ResetEmptiesOrCreatesTheFileOfAHomeWithLogs)
{
    const test::TempDirectory directory;
    const fs::path home = directory.path() + "home";
    const fs::path trace = makeHome(home);
    KX::Trace(KX::kTraceError, "dropped");
    EXPECT_EQ(fs::file_size(trace), 8u);
    resetWith(home);
    EXPECT_EQ(fs::file_size(trace), 0u);
    fs::remove(trace);
    resetWith(home);
    EXPECT_TRUE(fs::exists(trace));
    fs::remove_all(home / "logs");
    resetWith(home);
    EXPECT_TRUE(fs::is_empty(home));

    // A path of 256 bytes is one too many.
    const size_t others = directory.path().size() + std::string("/logs/kxhost.log").size();
    for (const size_t length : {255u, 256u}) {
        const fs::path longHome = directory.path() + std::string(length - others, 'x');
        const fs::path longTrace = makeHome(longHome);
        resetWith(longHome);
        EXPECT_EQ(fs::file_size(longTrace), length == 255 ? 0u : 8u);
    }
}

} // namespace
