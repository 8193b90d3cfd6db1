#include "log_fixture.h"

#include <pthread.h>
#include <unistd.h>

namespace {

using rkb::log_control_t;

// Binds `sink` as the custom sink of every slot, so that registrations made later are what counts.
void bind(rkb::log_it* sink)
{
    log_control_t::set_custom_sink(sink);
    log_control_t::set_default_flags(rkb::log_to_primary);
}

// Made before the library's own statics, and destroyed after some of them. Module 0 passes unasked.
struct early_t {
    early_t()
    {
        bind(&sink);
        RKB_LOG(0, rkb::log_info, "early\n");
        log_control_t::instance()->detach(&sink);
        log_control_t::set_custom_sink(nullptr);
        log_control_t::set_default_flags(3);
    }
    ~early_t()
    {
        bind(nullptr);
        RKB_LOG(0, rkb::log_info, "late\n");
    }

    Recorder sink;
} early;

TEST_F(LogTest, WorksInStaticInitialisers)
{
    EXPECT_EQ(early.sink.message(), "early\n");
}

TEST_F(LogTest, ALineIsPrefixThenMessage)
{
    Recorder sink;
    control().register_module(9, "NINE", 6, &sink, 2);
    const std::string ids = "[" + std::to_string(getpid()) + ":" + std::to_string(gettid()) + ":"
        + std::to_string(static_cast<uint32_t>(pthread_self())) + "]";
    enabled(9, 0); // binds, so that the sink has to be registered again
    control().register_module(9, "NINE", 6, &sink, 2);
    RKB_LOG(9, rkb::log_info, "opened, size = " << 5 << "\n");
    RKB_LOG(9, 6, "x\n");
    ASSERT_EQ(sink.lines.size(), 2u);
    EXPECT_EQ(
        sink.lines[0], "03/14/2026 09:05:07:042\tNINE\t" + ids + "\tINFO\topened, size = 5\n");
    EXPECT_EQ(sink.lines[1], "03/14/2026 09:05:07:042\tNINE\t" + ids + "\tN/A\tx\n");

    char buffer[100];
    EXPECT_EQ(rkb::log_stream_t(buffer, sizeof buffer, nullptr, nullptr).text(),
        "03/14/2026 09:05:07:042\t" + ids + "\t");
    RKB_LOG(9, rkb::log_fatal, std::string(1500, 'a').c_str() << std::string(1500, 'b').c_str());
    EXPECT_EQ(sink.lines[2].size(), rkb::log_line_size - 1);
    test_now.minute = 6;
    RKB_LOG(9, rkb::log_fatal, "later\n");
    EXPECT_TRUE(sink.lines[3].starts_with("03/14/2026 09:06:07:042\tNINE\t"));
}

TEST_F(LogTest, OnlyWhatGateAndModuleLetThroughIsEnabled)
{
    struct {
        int gate;
        int gate_read;
        uint32_t module_id;
        uint32_t level;
        bool enabled;
    } const cases[] = {
        {32, 32, 9, 3, true}, {32, 32, 9, 4, false}, // by the module's maximum
        {2, 2, 9, 2, true}, {2, 2, 9, 3, false}, {256, 0, 9, 0, true}, {256, 0, 9, 1, false},
        {255, -1, 9, 0, false}, {254, 254, 10, 31, true}, {32, 32, 10, 32, false},
        {32, 32, 9, 256, false}, {32, 32, 256, 0, false}, {32, 32, 8, 0, false},
        {32, 32, 0, 4, true}, {32, 32, 0, 5, false}, // never registered, yet it looks it
    };
    bind(nullptr);
    control().register_module(9, "NINE", 3, nullptr, 0);
    control().register_module(10, "TEN", 31, nullptr, 0);
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.gate << " " << c.module_id << " " << c.level);
        control().set_gate(static_cast<uint32_t>(c.gate));
        EXPECT_EQ(control().gate(), c.gate_read);
        EXPECT_EQ(enabled(c.module_id, c.level), c.enabled);
        int evaluated = 0;
        RKB_LOG(c.module_id, c.level, ++evaluated);
        EXPECT_EQ(evaluated, c.enabled ? 1 : 0);
    }
}

TEST_F(LogTest, CodesAndNames)
{
    Recorder sink;
    log_control_t& c = control();
    const std::pair<uint32_t, uint32_t> codes[] = {{c.register_module(256, "x", 1, &sink, 2), 2},
        {c.register_module(9, "x", 32, &sink, 2), 2}, {c.unregister_module(256), 2},
        {c.unregister_module(9), 5}, {c.set_sink(256, 0, &sink), 2}, {c.set_sink(9, 32, &sink), 2},
        {c.set_sink(9, 0, &sink), 5}, {c.set_flags(256, 0), 2}, {c.set_flags(9, 0), 5},
        {c.write(256, 0, "x", 1), 2}, {c.write(0, 32, "x", 1), 2}, {c.write(9, 0, "x", 1), 5},
        {c.set_level_name(32, "x"), 8}};
    for (const auto& [code, expected] : codes)
        EXPECT_EQ(code, expected) << &expected - &codes[0].second;
    EXPECT_EQ(c.level_name(32), nullptr);
    const char* const names[] = {"FATAL", "ERROR", "WARNING", "INFO", "DEBUG", "FUNC", "N/A"};
    for (uint32_t level = 0; level < 32; ++level)
        EXPECT_STREQ(c.level_name(level), names[std::min(level, 6u)]);
    EXPECT_EQ(c.set_level_name(31, "LAST"), 0u);
    EXPECT_STREQ(c.level_name(31), "LAST");
    EXPECT_EQ(c.set_level_name(31, nullptr), 0u);
    EXPECT_STREQ(c.level_name(31), "N/A");
    EXPECT_EQ(c.register_module(0, "ZERO", 4, nullptr, 0), 0u);
    EXPECT_EQ(c.unregister_module(0), 0u);
    const char* module_name = nullptr;
    const char* level_name = nullptr;
    EXPECT_TRUE(c.is_enabled(0, 4, module_name, level_name));
    EXPECT_STREQ(module_name, "NN/AA");
    EXPECT_EQ(c.attach(), rkb::log_already_attached);
}

struct Throwing final : rkb::log_it {
    uint32_t write(uint32_t, uint32_t, const char*, size_t) override { throw 1; }
};

TEST_F(LogTest, WritePassesALineToTheSinksThatItsSlotNames)
{
    struct {
        uint32_t flags;    // of registration and slots
        bool also_primary; // set besides what registration put
        size_t first;
        size_t second;
    } const cases[] = {{2, false, 1, 0}, {3, false, 1, 0}, {1, false, 1, 0}, {0, false, 0, 0},
        {4, false, 0, 0}, {1, true, 1, 0}};
    enabled(0, 0); // the binding is done and out of the way
    for (const auto& c : cases) {
        SCOPED_TRACE(c.flags);
        Recorder first;
        Recorder second;
        control().register_module(9, "NINE", 3, &first, c.flags);
        if (c.also_primary)
            control().set_sink(9, 1, &second); // the flags do not name its place
        EXPECT_EQ(control().write(9, 1, "abc", 3), 0u);
        EXPECT_EQ(control().write(9, 4, "abc", 3), 0u);
        EXPECT_EQ(first.lines.size(), c.first);
        EXPECT_EQ(second.lines.size(), c.second);
        control().unregister_module(9);
    }
    Recorder primary;
    Recorder secondary;
    control().register_module(9, "NINE", 3, &secondary, 1);
    control().set_sink_everywhere(&primary, 3);
    primary.answer = 7; // nobody's concern
    control().set_flags(9, 3);
    control().set_gate(255); // write does not ask it
    EXPECT_EQ(control().write(9, 3, "abc", 3), 0u);
    EXPECT_EQ(primary.lines, std::vector<std::string>{"abc"});
    EXPECT_EQ(secondary.lines, std::vector<std::string>{"abc"});
    control().set_sink_everywhere(&primary, 1);
    control().write(9, 3, "once", 4); // both places hold the same sink
    EXPECT_EQ(primary.lines.size(), 2u);
    EXPECT_EQ(control().write(9, 3, "abc", 3, &primary), 7u);
    Throwing throwing;
    EXPECT_EQ(control().write(9, 3, "abc", 3, &throwing), rkb::log_sink_failed);
    EXPECT_EQ(secondary.lines.size(), 1u);
}

TEST_F(LogTest, TheFirstEnabledCallBindsTheDefaultSinksOverTheRegisteredOnes)
{
    Recorder registered;
    Recorder custom;
    control().register_module(9, "NINE", 5, &registered, 2);
    RKB_LOG(9, rkb::log_func, "to the default file\n");
    EXPECT_TRUE(registered.lines.empty());
    EXPECT_EQ(files_in(directory() + "logs").size(), 2u);

    rkb::destroy_default_file_sink();
    log_control_t::set_custom_sink(&custom);
    RKB_LOG(9, rkb::log_func, "to both\n");
    EXPECT_EQ(custom.message(), "to both\n");
    std::string written;
    for (const auto& [name, text] : files_in(directory() + "logs"))
        written += text;
    EXPECT_NE(written.find("to the default file\n"), std::string::npos);
    EXPECT_NE(written.find("to both\n"), std::string::npos);
}

TEST_F(LogTest, EntryPointsLogTheirCallAndAct)
{
    Recorder sink;
    rkb::register_logger_handle(&sink, 2);
    EXPECT_EQ(rkb::register_logger(1, "UTIL", 5, nullptr, 2), 0u); // the custom sink stands in
    const std::string address = [&] {
        char text[32];
        snprintf(text, sizeof text, "0x%016zx", reinterpret_cast<size_t>(&sink));
        return std::string(text);
    }();
    EXPECT_EQ(rkb::register_logger(300, "BAD", 7, &sink, 3), 2u);
    EXPECT_EQ(sink.message(),
        "register_logger  module_id = 300, module_name = BAD, max_level = 7, logger = " + address
            + ", mode = 3\n");
    rkb::register_logger_handle(&sink, 0x102);
    EXPECT_EQ(sink.message(),
        "register_logger_handle logger = " + address
            + ", mask = 00000000000000000000000100000010\n");
    EXPECT_EQ(log_control_t::default_flags(), 2);
    rkb::enable_logger(260);
    EXPECT_EQ(sink.message(), "enable_logger max_level = 260\n");
    EXPECT_EQ(control().gate(), 4);
    rkb::enable_logger(511);
    EXPECT_EQ(sink.lines.size(), 3u);
    EXPECT_EQ(control().gate(), -1);
    rkb::enable_logger(32);

    EXPECT_EQ(rkb::configure_logger(5, 9), 8u);
    ASSERT_EQ(sink.lines.size(), 6u); // the call, that of the sink, and its complaint
    EXPECT_TRUE(sink.lines[3].ends_with("\tconfigure_logger, max_size = 5, max_idx = 9\n"));
}

} // namespace
