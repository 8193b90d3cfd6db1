// An ini file, its look-ups and changes to it. Input: the file's bytes.
#include "base/src/ini/ini.h"
#include "fuzz/naive_ini.h"
#include "fuzz/require.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <sys/mman.h>
#include <unistd.h>

namespace {

// Captures standard output.
class output_t {
public:
    output_t() { stdout = open_memstream(&m_text, &m_size); }
    ~output_t()
    {
        fclose(stdout);
        stdout = m_former;
        free(m_text);
    }
    output_t(const output_t&) = delete;
    output_t& operator=(const output_t&) = delete;

    std::string text()
    {
        fflush(stdout);
        return {m_text, m_size};
    }

private:
    FILE* m_former = stdout;
    char* m_text = nullptr;
    size_t m_size = 0;
};

// A file in memory.
class file_t {
public:
    explicit file_t(const std::string& content)
        : m_file(memfd_create("ini", MFD_CLOEXEC))
    {
        Require(
            write(m_file, content.data(), content.size()) == static_cast<ssize_t>(content.size()));
    }
    ~file_t() { close(m_file); }
    file_t(const file_t&) = delete;
    file_t& operator=(const file_t&) = delete;

    std::string path() const { return "/proc/self/fd/" + std::to_string(m_file); }

private:
    int m_file;
};

void check_key(const rkb::ini_t& ini, const std::string& section, const std::string& key,
    const std::string& value)
{
    Require(ini.get_string(section, key, "missing") == value);
    Require(ini.get_int(section, key, 7) == naive::read_int(value));
    const double number = ini.get_double(section, key, 7);
    const double expected = strtod(value.c_str(), nullptr);
    Require(number == expected || (std::isnan(number) && std::isnan(expected)));
}

void check_section(
    const rkb::ini_t& ini, const rkb::ini_section_t& section, const naive::ini_section_t& expected)
{
    Require(section.name == expected.name);
    Require(std::equal(section.comments.begin(), section.comments.end(), expected.comments.begin(),
        expected.comments.end()));
    Require(section.keys.size() == expected.keys.size());
    if (expected.keys.empty())
        return;
    const std::vector<std::string> names = ini.key_names(expected.name);
    for (size_t i = 0; i < section.keys.size(); ++i) {
        const auto& [key, value] = expected.keys[i];
        Require(section.keys[i].name == key && section.keys[i].value == value);
        Require(names.at(i) == key);
        check_key(ini, expected.name, key, value);
    }
}

void check(const rkb::ini_t& ini, naive::ini_file_t& expected)
{
    Require(std::equal(ini.header_comments().begin(), ini.header_comments().end(),
        expected.header_comments.begin(), expected.header_comments.end()));
    Require(ini.sections().size() == expected.sections.size());
    for (size_t i = 0; i < expected.sections.size(); ++i) {
        const naive::ini_section_t& section = expected.sections[i];
        check_section(ini, ini.sections()[i], section);
        const size_t key_count = expected.find(section.name)->keys.size();
        Require(ini.key_count(section.name) == key_count);
    }
    // Such names cannot come from a file and are not set here.
    Require(ini.get_int("no\nsuch", "key", 7) == 7 && ini.get_double("", "no\nsuch", 7) == 7);
}

// The text of a file with these contents.
std::string written(const rkb::ini_t& ini)
{
    std::string text;
    const auto write_comments = [&](const std::vector<std::string_view>& comments) {
        for (const std::string_view comment : comments)
            text.append(";").append(comment).append("\r\n");
    };
    write_comments(ini.header_comments());
    for (const rkb::ini_section_t& section : ini.sections()) {
        text.append("[").append(section.name).append("]\r\n");
        for (const rkb::ini_key_t& key : section.keys)
            text.append(" ").append(key.name).append(" = ").append(key.value).append("\r\n");
        write_comments(section.comments);
    }
    return text;
}

void check_set(rkb::ini_t& ini, naive::ini_file_t& expected)
{
    const std::string existing = expected.sections.empty() ? "" : expected.sections.back().name;
    for (const std::string& section : {existing, std::string("new\nsection")})
        for (const bool create : {false, true})
            for (const char* value : {"first", "second"}) {
                const bool is_set = ini.set(section, "key", value, create);
                Require(is_set == expected.set(section, "key", value, create));
            }
    check(ini, expected);
}

void check_text(const std::string& text)
{
    naive::ini_file_t expected = naive::read_ini(text);
    rkb::ini_t ini("");
    output_t output;
    Require(ini.load_text(text) == expected.is_loaded);
    Require(output.text() == expected.printed);
    check(ini, expected);

    rkb::ini_t again("");
    Require(again.load_text(written(ini)) == !ini.sections().empty());
    check(again, expected);

    check_set(ini, expected);
    ini.release();
    Require(ini.sections().empty() && ini.header_comments().empty());
}

// Places the text so that it begins in one block of the file stream and ends in the next one.
void check_file(const std::string& text)
{
    constexpr size_t block_size = BUFSIZ - 1;
    const size_t comment_size = block_size - text.size() % block_size / 2;
    const std::string content = ";" + std::string(comment_size - 2, 'c') + "\n" + text;
    naive::ini_file_t expected = naive::read_ini(content);
    const file_t file(content);
    rkb::ini_t ini(file.path());
    output_t output;
    Require(ini.load() == expected.is_loaded);
    Require(output.text() == expected.printed);
    check(ini, expected);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    constexpr size_t max_size = 16'384; // the naive reading takes time in proportion to its square
    if (size > max_size)
        return 0;
    const std::string text(data, data + size);
    check_text(text);
    if (size % 4 == 0) // it takes longer than everything else
        check_file(text);
    return 0;
}
