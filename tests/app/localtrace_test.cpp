#include "hidcontroller.h"
#include "trace.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

namespace fs = std::filesystem;

class LocalTrace : public testing::Test {
protected:
    void SetUp() override
    {
        std::string name = testing::TempDir() + "kelprobe-XXXXXX";
        ASSERT_NE(mkdtemp(name.data()), nullptr);
        directory_ = name;
    }
    void TearDown() override
    {
        unsetenv("RKB_HOME");
        fs::remove_all(directory_);
    }

    // A home with a logs directory that holds a trace of eight bytes.
    fs::path makeHome(const fs::path& name) const
    {
        fs::path home = directory_ / name;
        fs::create_directories(home / "logs");
        std::ofstream(home / "logs/kxhost.log") << "earlier\n";
        return home;
    }

    // As the host does it.
    static void resetWith(const fs::path& home)
    {
        setenv("RKB_HOME", home.c_str(), 1);
        IKXHost* host = CreateKXHost(&HidController::instance());
        host->ResetTrace();
        DestroyKXHost(host);
    }

    fs::path directory_;
};

TEST_F(LocalTrace, ResetEmptiesOrCreatesTheFileOfAHomeWithLogs)
{
    const fs::path home = makeHome("home");
    KX::Trace(KX::kTraceError, "dropped");
    EXPECT_EQ(fs::file_size(home / "logs/kxhost.log"), 8u);
    resetWith(home);
    EXPECT_EQ(fs::file_size(home / "logs/kxhost.log"), 0u);
    fs::remove(home / "logs/kxhost.log");
    resetWith(home);
    EXPECT_EQ(fs::file_size(home / "logs/kxhost.log"), 0u);
    fs::remove_all(home / "logs");
    resetWith(home);
    EXPECT_TRUE(fs::is_empty(home));
}

TEST_F(LocalTrace, ResetLeavesAPathOf256BytesAlone)
{
    const std::string file = "/logs/kxhost.log";
    const size_t rest = 255 - file.size() - (directory_.string().size() + 1);
    const fs::path fits = makeHome(std::string(rest, 'x'));
    const fs::path tooLong = makeHome(std::string(rest + 1, 'x'));
    resetWith(fits);
    resetWith(tooLong);
    EXPECT_EQ(fs::file_size(fits.string() + file), 0u);
    EXPECT_EQ(fs::file_size(tooLong.string() + file), 8u);
}

} // namespace
