#include "base/src/ini/ini.h"
#include "base/src/ini/ini_config.h"
#include "tests/support/temp_directory.h"

#include <sys/resource.h>
#include <tuple>

namespace {

// Everything that a file left in memory, in order.
std::string contents(const rkb::ini_t& ini)
{
    std::ostringstream out;
    for (const std::string_view comment : ini.header_comments())
        out << ";" << comment << "|";
    for (const rkb::ini_section_t& section : ini.sections()) {
        out << "[" << section.name << "]";
        for (const rkb::ini_key_t& key : section.keys)
            out << key.name << "=" << key.value << "|";
        for (const std::string_view comment : section.comments)
            out << ";" << comment << "|";
    }
    return out.str();
}

TEST(Ini, ReadsTextUpToALineThatIsUnprintableOrTooLong)
{
    using std::string_literals::operator""s;
    const std::string long_key = "b=" + std::string(rkb::ini_t::max_line_size - 2, 'v');
    // A text, what it leaves in memory, what is printed, and whether it loads.
    const std::tuple<std::string, std::string, const char*, bool> rows[] = {
        {"", "", "", false},
        {"; one\n#two\n", "; one|;two|", "", false},
        {"a=1\nb=2", "[]a=1|b=2|", "", true},
        {"[ s ]\na=1\n[]\nA=1\na=2\nA=3\n", "[ s ]a=1|[]A=3|a=2|", "", true},
        {"[s]\na=1\n[t]\nb=2\n[s]\n;n\nc=3\na=4\n", "[s]a=4|c=3|;n|[t]b=2|[s]", "", true},
        // The first special character decides, whatever is before or after it.
        {"#h\na=1\n#c\n[s]\n;d;e = f # g \n", ";h|[]a=1|;c|[s];d;e = f # g |", "", true},
        {" a=\xC3\xA4\x01 \n~==[c]\n", "[]a=\xC3\xA4\x01|~==[c]|", "", true},
        {"x ; a=1\ny [s] = 2\nz]=3[\n", "; a=1|[s]z]=3[|", "", true},
        {"[a] ; b]\n[a\n]b[\nplain\n ] [c]x\n", "[a] ; b][c]", "", true},
        {"=v\n = \n  k\t=\t\na=;c\nb=#\nc= x \t\r\n", "[]=|k=|a=|b=|c=x|", "", true},
        {"a\0b=c\0d\n[e\0]\r\n"s, "[]a\0b=c\0d|[e\0]"s, "", true},
        {"[s]\na=1\n\tb=2\nc=3\n", "[s]a=1|", "Failing on int8_t 9\n", false},
        {"\xEF\xBB\xBF[s]\n", "", "Failing on int8_t -17\n", false},
        {"[s]\n\r\n\r\r\n", "[s]", "Failing on int8_t 13\n", false},
        {"[s]\n\0=1"s, "[s]", "Failing on int8_t 0\n", false},
        {long_key + "\nc=2\n", "[]" + long_key + "|c=2|", "", true},
        {"a=1\n" + long_key + "v\nc=2\n", "[]a=1|", "", false},
        {"a=1\n\t" + long_key + "\nc=2\n", "[]a=1|", "Failing on int8_t 9\n", false},
    };
    const test::TempDirectory directory;
    for (const auto& [text, left, printed, loads] : rows) {
        SCOPED_TRACE(text.substr(0, 99));
        rkb::ini_t from_file(directory.file("ini", text));
        rkb::ini_t from_text("");
        testing::internal::CaptureStdout();
        EXPECT_EQ(from_file.load(), loads);
        EXPECT_EQ(from_text.load_text(text), loads);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), std::string(printed) + printed);
        EXPECT_TRUE(contents(from_file) == left) << contents(from_file).substr(0, 99);
        EXPECT_TRUE(contents(from_text) == left) << contents(from_text).substr(0, 99);
    }
}

TEST(Ini, DoesNotLoadWhatIsNoTextFile)
{
    testing::internal::CaptureStdout();
    // A directory opens, but cannot be read. The last one has no end.
    for (const char* path : {"/no/such/file", "/", "/dev/zero"})
        EXPECT_FALSE(rkb::ini_t(path).load());
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Failing on int8_t 0\n");
}

TEST(Ini, FindsAmongManySectionsAndKeys)
{
    constexpr int count = 100'000; // searched in order, this would outlast the test's time
    rkb::ini_t ini("");
    for (int i = 0; i < count; ++i) {
        ini.set(std::to_string(i), "key", std::to_string(i), true);
        ini.set("", std::to_string(i), std::to_string(i), true);
    }
    for (int i = 0; i < count; ++i) {
        ASSERT_EQ(ini.get_int(std::to_string(i), "key", -1), i);
        ASSERT_EQ(ini.get_int("", std::to_string(i), -1), i);
    }
}

TEST(Ini, SetAddsOnlyWhenAskedToAndReplacedValuesTakeNoMemory)
{
    rkb::ini_t ini("");
    ASSERT_TRUE(ini.load_text(";h\n[s]\na=1\n;c\nb=2\n"));
    EXPECT_FALSE(ini.set("t", "", "3", false));
    EXPECT_FALSE(ini.set("s", "c", "3", false));
    EXPECT_TRUE(ini.set("t", "", "", true));
    rusage before{};
    rusage after{};
    getrusage(RUSAGE_SELF, &before);
    for (int i = 0; i < 100'000; ++i)
        ini.set("s", "a", std::string(10'000, static_cast<char>('a' + i % 26)), false);
    getrusage(RUSAGE_SELF, &after);
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 500'000); // KiB; all values take twice as much
    EXPECT_EQ(contents(ini), ";h|[s]a=" + std::string(10'000, 'd') + "|b=2|;c|[t]=|");
    EXPECT_EQ(ini.key_names("s"), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(ini.key_count("s"), 2u);
    EXPECT_TRUE(ini.key_names("u").empty());
    ini.release();
    EXPECT_EQ(contents(ini), "");
    EXPECT_EQ(ini.get_string("s", "a", "gone"), "gone");
}

TEST(Ini, ConvertsAsStrtolAndStrtodDo)
{
    const std::tuple<const char*, int, double> rows[] = {{"12abc", 12, 12.0}, {"abc", 0, 0.0},
        {"-7.5e1", -7, -75.0}, {"+0x10", 0, 16.0}, {"2147483648", INT32_MIN, 2147483648.0},
        {"99999999999999999999", -1, 1e20}}; // the largest long, cut
    rkb::ini_t ini("");
    for (const auto& [text, number, real] : rows) {
        ini.set("s", "k", text, true);
        EXPECT_EQ(ini.get_int("s", "k", 5), number) << text;
        EXPECT_EQ(ini.get_double("s", "k", 5.0), real) << text;
    }
    EXPECT_EQ(ini.get_int("s", "none", 7), 7);
    EXPECT_EQ(ini.get_double("none", "k", 0.1), 0.1);
}

TEST(ConfigFilePath, FollowsTheProgramsName)
{
    const std::tuple<const char*, const char*, const char*> rows[]
        = {{"/srv/", "/opt/app/bin/tool-media", "/srv/conf/rkb-media.cfg"},
            {" \t/srv/r b\n", "a-b-c", "/srv/r b/conf/rkb-c.cfg"},
            {"/", "app-x/tool-", "/conf/rkb.cfg"}, {"/x", "app-x/tool", "/x/conf/rkb.cfg"},
            {" \v\f\r", "tool", ""}, {nullptr, "tool", ""}};
    for (const auto& [home, program, path] : rows) {
        home ? setenv("RKB_HOME", home, 1) : unsetenv("RKB_HOME");
        EXPECT_EQ(rkb::config_file_path(program), path);
    }
}

} // namespace
