// Report descriptors for tests: of devices on the market, and given as text.
#pragma once

#include "report/format/descriptor_file.h"

#include <filesystem>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace test {

// Throws std::runtime_error if the result is an error.
inline report::DescriptorBytes bytesOf(report::DescriptorResult result)
{
    if (const auto* error = std::get_if<report::DescriptorError>(&result))
        throw std::runtime_error(error->text);
    return std::get<report::DescriptorBytes>(std::move(result));
}

// As in a descriptor file, but empty for an empty text.
inline std::vector<uint8_t> bytesFromHex(const std::string& text)
{
    return text.empty() ? report::DescriptorBytes{} : bytesOf(report::parseDescriptor(text, text));
}

inline std::vector<uint8_t> bytesFromHexFile(const std::filesystem::path& file)
{
    return bytesOf(report::readDescriptorFile(file));
}

// "VVVV-PPPP" of every device on the market. Those that the simulator has as profiles are among its
// profiles, the others among the tests' data.
inline std::vector<std::string> deviceNames()
{
    std::vector<std::string> names;
    for (const char* const directory : {KELPROBE_TEST_DEVICES, KELPROBE_TEST_PROFILES})
        for (const auto& entry : std::filesystem::directory_iterator(directory))
            if (entry.path().extension() == ".hex" && entry.path().stem().native().find('-') == 4)
                names.push_back(entry.path().stem());
    return names;
}

// `name` is one of deviceNames().
inline std::vector<uint8_t> deviceDescriptor(const std::string& name)
{
    const std::string file = "/" + name + ".hex";
    const bool isProfile = std::filesystem::exists(KELPROBE_TEST_PROFILES + file);
    return bytesFromHexFile((isProfile ? KELPROBE_TEST_PROFILES : KELPROBE_TEST_DEVICES) + file);
}

} // namespace test
