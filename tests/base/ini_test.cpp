#include "base/src/ini/ini.h"
#include "base/src/ini/ini_config.h"
#include "tests/support/temp_directory.h"

#include <csignal>
#include <optional>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <tuple>

namespace {

// The most memory that this process has used, in KiB.
long peak_memory()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

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

TEST(Ini, ReadsWholeFiles)
{
    using std::string_literals::operator""s;
    const test::TempDirectory directory;
    struct {
        std::string text;
        bool loads;
        std::string contents;
        std::optional<int> unprintable = {}; // the character that ends the parse, and is printed
    } const files[] = {
        {"", false, ""},
        {"\n\r\n\n", false, ""},
        {"; one\n#two\n", false, "; one|;two|"},
        {"a=1\nb=2", true, "[]a=1|b=2|"},
        {"[s]\r\nkey = a b ; note\r\n", true, "[s]key=a b|"},
        {"[ s ]\na=1\n[]\nA=1\na=2\nA=3\n", true, "[ s ]a=1|[]A=3|a=2|"},
        {"[s]\na=1\n[t]\nb=2\n[s]\n;n\nc=3\na=4\n", true, "[s]a=4|c=3|;n|[t]b=2|[s]"},
        {"#h\na=1\n#c\n[s]\n;d;e = f # g \n", true, ";h|[]a=1|;c|[s];d;e = f # g |"},
        // The first special character decides, whatever stands before or behind it.
        {"x ; a=1\ny [s] = 2\nz]=3[\n", true, "; a=1|[s]z]=3[|"},
        {"[a] ; b]\n[a\n]b[\nplain\n ] [c]x\n", true, "[a] ; b][c]"},
        {"a==b=[c]\nq=\"x # y\"\n", true, "[]a==b=[c]|q=\"x|"},
        {"=v\n = \n  k\t=\t\na=;c\nb=#\nc= x \t\r\n", true, "[]=|k=|a=|b=|c=x|"},
        {"a\0b=c\0d\n[e\0]\n"s, true, "[]a\0b=c\0d|[e\0]"s},
        {" a=\xC3\xA4\x01 \n~=2\n", true, "[]a=\xC3\xA4\x01|~=2|"},
        {"a=1\r\r\nb=2\r", true, "[]a=1|b=2|"},
        // An unprintable first character ends the parse.
        {"[s]\na=1\n\tb=2\nc=3\n", false, "[s]a=1|", 9},
        {"\xEF\xBB\xBF[s]\n", false, "", -17},
        {"[s]\n\r\n\r\r\n", false, "[s]", 13},
        {"[s]\n\0=1"s, false, "[s]", 0},
        {"[s]\n\x7F", false, "[s]", 127},
    };
    for (const auto& file : files) {
        SCOPED_TRACE(file.text);
        const std::string path = directory.file("ini", file.text);
        for (const bool from_file : {true, false}) {
            rkb::ini_t ini(path);
            testing::internal::CaptureStdout();
            EXPECT_EQ(from_file ? ini.load() : ini.load_text(file.text), file.loads);
            const std::string printed = testing::internal::GetCapturedStdout();
            const std::string number = std::to_string(file.unprintable.value_or(0));
            EXPECT_EQ(printed, file.unprintable ? "Failing on int8_t " + number + "\n" : "");
            EXPECT_EQ(contents(ini), file.contents);
        }
    }
}

TEST(Ini, ReadsLinesUpToALimit)
{
    const test::TempDirectory directory;
    const std::string begin = "[s]\na=1\n";
    const std::string longest = "b=" + std::string(rkb::ini_t::max_line_size - 2, 'v');
    struct {
        std::string text;
        bool loads;
        size_t keys;
        const char* printed = "";
    } const files[] = {
        {begin + longest + "\nc=2\n", true, 3},
        {begin + longest, true, 2},
        {begin + longest + "v\nc=2\n", false, 1},
        {begin + longest + "v", false, 1},
        {begin + "\t" + longest + "\nc=2\n", false, 1, "Failing on int8_t 9\n"},
    };
    for (const auto& file : files) {
        rkb::ini_t ini(directory.file("ini", file.text));
        testing::internal::CaptureStdout();
        EXPECT_EQ(ini.load(), file.loads);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), file.printed);
        EXPECT_EQ(ini.key_count("s"), file.keys);
        EXPECT_EQ(ini.get_int("s", "a", 0), 1);
        EXPECT_EQ(ini.get_string("s", "b", "").size(), file.keys > 1 ? longest.size() - 2 : 0);
    }
}

TEST(Ini, StopsInALineWithoutEnd)
{
    signal(SIGPIPE, SIG_IGN);
    const test::TempDirectory directory;
    const std::string path = directory.path() + "pipe";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    size_t written = 0;
    std::thread writer([&] {
        std::ofstream pipe(path, std::ios::binary);
        const std::string block(65'536, 'v');
        while (pipe << block)
            written += block.size();
    });
    EXPECT_FALSE(rkb::ini_t(path).load());
    writer.join();
    EXPECT_LT(written, 4 * rkb::ini_t::max_line_size);
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
    std::string sections;
    std::string keys = "[s]\n";
    for (int i = 0; i < count; ++i) {
        const std::string n = std::to_string(i);
        sections.append("[s").append(n).append("]\nkey=").append(n).append("\n");
        keys.append("k").append(n).append("=").append(n).append("\n");
    }
    rkb::ini_t ini("");
    ASSERT_TRUE(ini.load_text(sections + keys + keys));
    EXPECT_EQ(ini.sections().size(), count + 2u);
    EXPECT_EQ(ini.key_count("s"), size_t{count});
    EXPECT_EQ(ini.key_names("s").back(), "k99999");
    for (int i = 0; i < count; ++i) {
        ASSERT_EQ(ini.get_int("s" + std::to_string(i), "key", -1), i);
        ASSERT_EQ(ini.get_int("s", "k" + std::to_string(i), -1), i);
    }
    EXPECT_EQ(ini.get_int("s", "k100000", -1), -1);
}

TEST(Ini, SetAddsOnlyWhenAskedToAndKeepsEverythingElse)
{
    rkb::ini_t ini("");
    ASSERT_TRUE(ini.load_text(";h\n[s]\na=1\n;c\nb=2\n"));
    EXPECT_FALSE(ini.set("t", "", "3", false));
    EXPECT_FALSE(ini.set("s", "c", "3", false));
    EXPECT_TRUE(ini.set("t", "", "", true));
    for (int i = 0; i < 1000; ++i)
        EXPECT_TRUE(ini.set("s", "a", std::string(1000, static_cast<char>('a' + i % 26)), false));
    EXPECT_EQ(contents(ini), ";h|[s]a=" + std::string(1000, 'l') + "|b=2|;c|[t]=|");
    EXPECT_EQ(ini.key_names("t"), std::vector<std::string>{""});
    EXPECT_TRUE(ini.key_names("u").empty());
    EXPECT_EQ(ini.key_count("u"), 0u);
    ini.release();
    EXPECT_EQ(contents(ini), "");
    EXPECT_EQ(ini.get_string("s", "a", "gone"), "gone");
}

TEST(Ini, ReplacedValuesTakeNoMemory)
{
    std::string text;
    for (int i = 0; i < 2000; ++i)
        text.append("key=").append(std::string(10'000, 'v')).append("\n");
    rkb::ini_t ini("");
    const long before = peak_memory();
    ASSERT_TRUE(ini.load_text(text));
    for (size_t i = 0; i < 20'000; ++i)
        ini.set("", "key", std::string_view(text).substr(i, 10'000), true);
    EXPECT_LT(peak_memory() - before, 100'000); // all values together take twice as much
}

TEST(Ini, ConvertsAsStrtolAndStrtodDo)
{
    const std::tuple<const char*, int, double> rows[]
        = {{"12abc", 12, 12.0}, {"abc", 0, 0.0}, {"", 0, 0.0}, {"-7.5e1", -7, -75.0},
            {"+0x10", 0, 16.0}, {"2147483648", INT32_MIN, 2147483648.0},
            {"99999999999999999999", -1, 1e20}}; // the largest long, cut
    rkb::ini_t ini("");
    for (const auto& [text, number, real] : rows) {
        ini.set("s", "k", text, true);
        EXPECT_EQ(ini.get_int("s", "k", 5), number) << text;
        EXPECT_EQ(ini.get_double("s", "k", 5.0), real) << text;
    }
    EXPECT_EQ(ini.get_int("s", "none", INT32_MIN), INT32_MIN);
    EXPECT_EQ(ini.get_double("none", "k", 0.1), 0.1);
}

TEST(ConfigFilePath, FollowsTheProgramsName)
{
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"/srv/rkb", "/opt/app/bin/tool-media", "/srv/rkb/conf/rkb-media.cfg"},
        {"/srv/rkb/", "/opt/app-x/bin/tool", "/srv/rkb/conf/rkb.cfg"},
        {" \t/srv/r b\n", "a-b-c", "/srv/r b/conf/rkb-c.cfg"},
        {"/", "tool-", "/conf/rkb.cfg"},
        {"/x", "", "/x/conf/rkb.cfg"},
        {" \v\f\r", "tool", ""},
        {nullptr, "tool", ""},
    };
    for (const auto& [home, program, path] : rows) {
        home ? setenv("RKB_HOME", home, 1) : unsetenv("RKB_HOME");
        EXPECT_EQ(rkb::config_file_path(program), path);
    }
}

} // namespace
