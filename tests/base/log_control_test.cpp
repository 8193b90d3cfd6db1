#include "tests/base/log_fixture.h"
#include "tests/support/child_process.h"

#include <algorithm>
#include <pthread.h>
#include <unistd.h>

namespace {

using rkb::log_control_t;

// Constructed before the library's static objects and destroyed after some of them. Lines of module
// 0 pass without registration.
struct early_t {
    early_t()
    {
        rkb::register_logger_handle(&sink, rkb::log_to_primary);
        RKB_LOG(0, rkb::log_info, "early\n");
        log_control_t::instance()->forget_sinks();
        rkb::register_logger_handle(nullptr, 3);
    }
    ~early_t()
    {
        log_control_t::set_default_flags(rkb::log_to_primary);
        RKB_LOG(0, rkb::log_info, "late\n");
    }

    Recorder sink;
} early;

TEST_F(LogTest, WorksInStaticInitialisers)
{
    EXPECT_EQ(early.sink.messages(), "early\n");
}

std::string prefix(int process, const char* time = "09:05:07:042")
{
    return std::string("03/14/2026 ") + time + "\tNINE\t[" + std::to_string(process) + ":"
        + std::to_string(gettid()) + ":" + std::to_string(static_cast<uint32_t>(pthread_self()))
        + "]\t";
}

TEST_F(LogTest, ALineIsPrefixThenMessage)
{
    const int process = getpid();
    Recorder sink;
    rkb::register_logger_handle(&sink, 2);
    control().register_module(9, "NINE", 6, &sink, 2);
    RKB_LOG(9, rkb::log_info, "opened, size = " << 5 << "\n");
    EXPECT_EQ(sink.lines.back(), prefix(process) + "INFO\topened, size = 5\n");
    const std::string longest(rkb::log_line_size, 'a');
    RKB_LOG(9, 6, longest.c_str());
    EXPECT_EQ(
        sink.lines.back(), (prefix(process) + "N/A\t" + longest).substr(0, rkb::log_line_size - 1));
    test_now.minute = 6;
    RKB_LOG(9, rkb::log_fatal, "later\n");
    EXPECT_EQ(sink.lines.back(), prefix(process, "09:06:07:042") + "FATAL\tlater\n");
    // A forked child has its own thread's id, and that of the process which was read at first.
    EXPECT_TRUE(test::passesInChild([&] {
        RKB_LOG(9, rkb::log_fatal, "of the child\n");
        EXPECT_EQ(sink.lines.back(), prefix(process, "09:06:07:042") + "FATAL\tof the child\n");
    }));
}

TEST_F(LogTest, OnlyWhatGateAndModuleLetThroughIsEvaluated)
{
    rkb::register_logger_handle(nullptr, 2);
    control().register_module(9, "NINE", 3, nullptr, 0);
    control().register_module(10, "TEN", 31, nullptr, 0);
    // The first was never registered, yet looks it. The two that are not pass nothing.
    const std::map<uint32_t, int> max_levels{{0, 4}, {9, 3}, {10, 31}, {8, -1}, {256, -1}};
    const std::map<uint32_t, int> gates{{32, 32}, {2, 2}, {256, 0}, {255, -1}, {254, 254}};
    for (const auto& [gate, open] : gates) {
        control().set_gate(gate);
        EXPECT_EQ(control().gate(), open);
        for (const auto& [module_id, max_level] : max_levels) {
            int passed = -1;
            for (uint32_t level = 0; level < 40; ++level)
                RKB_LOG(module_id, level, ++passed);
            EXPECT_EQ(passed, std::min(open, max_level)) << gate << " " << module_id;
        }
    }
}

TEST_F(LogTest, CodesAndNames)
{
    log_control_t& c = control();
    const std::pair<uint32_t, uint32_t> codes[] = {{c.register_module(256, "x", 1, nullptr, 2), 2},
        {c.register_module(9, "x", 32, nullptr, 2), 2}, {c.unregister_module(256), 2},
        {c.unregister_module(9), 5}, {c.set_sink(256, 0, nullptr), 2},
        {c.set_sink(9, 32, nullptr), 2}, {c.set_sink(9, 0, nullptr), 5}, {c.set_flags(256, 0), 2},
        {c.set_flags(9, 0), 5}, {c.write(256, 0, "x", 1), 2}, {c.write(0, 32, "x", 1), 2},
        {c.write(9, 0, "x", 1), 5}, {c.set_level_name(32, "x"), 8}, {c.set_level_name(6, "SIX"), 0},
        {c.set_level_name(7, nullptr), 0}, {c.register_module(0, "ZERO", 4, nullptr, 0), 0},
        {c.unregister_module(0), 0}};
    for (const auto& [code, expected] : codes)
        EXPECT_EQ(code, expected) << &expected - &codes[0].second;
    std::string names;
    for (uint32_t level = 0; const char* name = c.level_name(level); ++level)
        names.append(name).append(level < 8 ? " " : "");
    EXPECT_TRUE(names.starts_with("FATAL ERROR WARNING INFO DEBUG FUNC SIX N/A N/A")) << names;
    c.set_level_name(6, nullptr);
    const char* module_name = nullptr;
    const char* level_name = nullptr;
    EXPECT_TRUE(c.is_enabled(0, 4, module_name, level_name));
    EXPECT_STREQ(module_name, "NN/AA");
    EXPECT_EQ(c.attach(), rkb::log_already_attached);
}

TEST_F(LogTest, WritePassesALineToTheSinksThatItsSlotNames)
{
    control().attach(); // out of the way
    Recorder primary;
    Recorder secondary;
    const auto write = [](const char* text, uint32_t level = 3, rkb::log_it* sink = nullptr) {
        return control().write(9, level, text, 1, sink);
    };
    for (const uint32_t flags : {0u, 1u, 2u, 3u, 4u}) {
        control().register_module(9, "NINE", 3, &primary, flags);
        if (flags == 1)
            control().set_sink(9, 3, &secondary); // the flags do not name its place
        write(&"01234"[flags]);
        EXPECT_EQ(write("x", 4), 0u); // above the maximum
        control().unregister_module(9);
    }
    control().register_module(9, "NINE", 3, &secondary, 1);
    control().set_flags(9, 3);
    write("a"); // unregistering has cleared the primary place
    control().set_sink_everywhere(&primary, 3);
    primary.result = 7;      // is ignored
    control().set_gate(255); // does not concern write()
    EXPECT_EQ(write("b"), 0u);
    control().set_sink_everywhere(&primary, 1);
    write("c"); // once: both places hold the same sink
    EXPECT_EQ(write("d", 3, &primary), 7u);
    struct : rkb::log_it {
        uint32_t write(uint32_t, uint32_t, const char*, size_t) override { throw 1; }
    } throwing;
    EXPECT_EQ(write("e", 3, &throwing), rkb::log_sink_failed);
    EXPECT_EQ(primary.messages(), "123bcd");
    EXPECT_EQ(secondary.messages(), "ab");
}

TEST_F(LogTest, TheFirstLineBindsTheDefaultSinksAndDestroyingTheFileEmptiesOnlyItsPlaces)
{
    Recorder replaced;
    Recorder registered;
    Recorder set_later;
    Recorder custom;
    control().register_module(9, "NINE", 5, &replaced, 2);
    RKB_LOG(9, rkb::log_func, "to the default file\n");
    EXPECT_TRUE(default_log().ends_with("to the default file\n"));
    control().register_module(9, "NINE", 5, &registered, 2);
    control().set_flags(9, 3); // the secondary places still hold the default file sink
    control().register_module(10, "TEN", 5, &registered, 1);
    rkb::destroy_default_file_sink();
    std::filesystem::remove_all(directory() + "logs");
    control().set_sink(9, rkb::log_error, &set_later);
    const std::pair<uint32_t, uint32_t> sites[]
        = {{9, rkb::log_info}, {9, rkb::log_error}, {10, rkb::log_info}, {0, rkb::log_info}};
    for (const auto& site : sites)
        RKB_LOG(site.first, site.second, site.first << "." << site.second << ";\n");
    control().forget_sinks();
    log_control_t::set_custom_sink(&custom);
    RKB_LOG(9, rkb::log_func, "to both\n");
    EXPECT_EQ(replaced.messages() + registered.messages(), "9.3;\n10.3;\n");
    EXPECT_EQ(set_later.messages(), "9.1;\n");
    EXPECT_EQ(custom.messages(), "to both\n");
    EXPECT_EQ(messages_of(default_log()), "9.3;\n9.1;\n0.3;\nto both\n");
}

TEST_F(LogTest, ANullSinkStandsForTheCustomSinkElseTheDefaultFileSink)
{
    Recorder custom;
    rkb::register_logger_handle(nullptr, 2); // all lines go to the custom sink, which is none
    control().attach();
    rkb::register_logger(9, "NINE", 5, nullptr, 2);
    RKB_LOG(9, rkb::log_info, "of nine\n");
    rkb::register_logger_handle(&custom, 2);
    rkb::register_logger(10, "TEN", 5, nullptr, 2);
    RKB_LOG(10, rkb::log_info, "of ten\n");
    rkb::register_logger_handle(nullptr, 2); // takes the custom sink out of every primary place
    RKB_LOG(10, rkb::log_info, "to no sink\n");
    EXPECT_EQ(messages_of(default_log()), "of nine\n");
    EXPECT_EQ(custom.messages(), "of ten\n");

    rkb::destroy_default_file_sink();
    rkb::enable_logger(255);
    rkb::register_logger(11, "ELEVEN", 5, nullptr, 2);
    EXPECT_EQ(rkb::existing_default_file_sink(), nullptr); // not created while logging is off
}

TEST_F(LogTest, EntryPointsLogTheirCallAndAct)
{
    Recorder sink;
    record_library(sink);
    EXPECT_EQ(rkb::register_logger(300, "BAD", 7, &sink, 3), 2u);
    rkb::register_logger_handle(&sink, 0x102);
    EXPECT_EQ(log_control_t::default_flags(), 2);
    rkb::enable_logger(260);
    EXPECT_EQ(control().gate(), 4);
    EXPECT_EQ(rkb::configure_logger(5, 9), 8u);
    rkb::enable_logger(511);
    EXPECT_EQ(control().gate(), -1);
    const std::string address = address_of(&sink);
    const std::string calls
        = "register_logger  module_id = 300, module_name = BAD, max_level = 7, logger = " + address
        + ", mode = 3\nregister_logger_handle logger = " + address
        + ", mask = 00000000000000000000000100000010\nenable_logger max_level = 260\n"
          "configure_logger, max_size = 5, max_idx = 9\n";
    // After these come two lines of the file sink: its own call and that it failed.
    EXPECT_TRUE(sink.messages().starts_with(calls)) << sink.messages();
    EXPECT_EQ(sink.lines.size(), 6u);
}

} // namespace
