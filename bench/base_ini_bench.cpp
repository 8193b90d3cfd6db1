// Loading ini files and looking up values, compared with inih and SimpleIni.
#include "bench/measure.h"

#include "base/src/ini/ini.h"
#include "bench/base_ini_peers.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

constexpr size_t look_up_count = 10'000;

// The name of a key in a file that has `per_section` keys in each section.
peers::name_t name_of(size_t index, size_t per_section)
{
    return {"section" + std::to_string(index / per_section), "key_" + std::to_string(index)};
}

void write_file(const std::string& path, size_t keys, size_t per_section)
{
    std::ofstream file(path);
    for (size_t i = 0; i < keys; ++i) {
        const auto [section, key] = name_of(i, per_section);
        if (i % per_section == 0)
            file << "[" << section << "]\n";
        file << key << " = value number " << i << "\n";
    }
}

std::vector<peers::name_t> names_to_look_up(size_t keys, size_t per_section)
{
    std::vector<peers::name_t> names;
    size_t index = 0;
    for (size_t i = 0; i < look_up_count; ++i) {
        names.push_back(name_of(index, per_section));
        index = (index * 1'664'525 + 1'013'904'223) % keys;
    }
    return names;
}

size_t load(const std::string& path)
{
    rkb::ini_t ini(path);
    return ini.load() ? ini.sections().size() : 0;
}

size_t look_up(const std::string& path, const std::vector<peers::name_t>& names)
{
    rkb::ini_t ini(path);
    if (!ini.load())
        return 0;
    size_t sum = 0;
    for (const peers::name_t& name : names)
        sum += ini.get_string(name.section, name.key, "").size();
    return sum;
}

// Batches of about the same length, whatever the file's size.
template <typename call_t>
auto repeated(size_t times, const call_t& call)
{
    return [times, call] {
        for (size_t i = 0; i < times; ++i)
            bench::keep(call());
    };
}

void measure(const std::string& path, size_t keys, size_t per_section)
{
    write_file(path, keys, per_section);
    const std::vector<peers::name_t> names = names_to_look_up(keys, per_section);
    if (peers::parse_with_inih(path) != keys || load(path) != (keys + per_section - 1) / per_section
        || look_up(path, names) != peers::look_up_with_simpleini(path, names)) {
        std::puts("the parsers do not agree");
        std::exit(1);
    }

    const size_t times = 100'000 / keys;
    const std::string what
        = std::to_string(keys) + " keys, " + std::to_string(per_section) + " per section";
    bench::compare((what + ": load next to inih's bare parse, per key").c_str(), "none",
        keys * times, repeated(times, [&] { return load(path); }),
        repeated(times, [&] { return peers::parse_with_inih(path); }));
    const size_t runs = times / 100 + 1;
    bench::compare((what + ": load and 10,000 look-ups next to SimpleIni, per run").c_str(), "< 1",
        runs, repeated(runs, [&] { return look_up(path, names); }),
        repeated(runs, [&] { return peers::look_up_with_simpleini(path, names); }));
}

} // namespace

int main()
{
    std::string directory = std::filesystem::temp_directory_path() / "kelprobe-bench-XXXXXX";
    if (!mkdtemp(directory.data()))
        return 1;
    const std::string path = directory + "/file.ini";
    bench::print_head();
    for (const size_t keys : {10u, 1'000u, 100'000u}) {
        measure(path, keys, keys);
        if (keys > 10)
            measure(path, keys, 100);
    }
    measure(path, 100'000, 1);
    std::filesystem::remove_all(directory);
    return 0;
}
