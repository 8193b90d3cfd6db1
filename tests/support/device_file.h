// Report descriptors for tests: of devices on the market, and given as text.
#pragma once

#include "report/descriptor_file.h"

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

// The files of all devices on the market, named "VVVV-PPPP.hex". Those that are profiles of the
// simulator are in its folder, the others in the tests' data.
inline std::vector<std::filesystem::path> deviceFiles()
{
    std::vector<std::filesystem::path> files;
    for (const char* const directory : {KELPROBE_TEST_DEVICES, KELPROBE_TEST_PROFILES})
        for (const auto& entry : std::filesystem::directory_iterator(directory))
            if (entry.path().extension() == ".hex" && entry.path().stem().native().find('-') == 4)
                files.push_back(entry.path());
    return files;
}

// "VVVV-PPPP" of each.
inline std::vector<std::string> deviceNames()
{
    std::vector<std::string> names;
    for (const auto& file : deviceFiles())
        names.push_back(file.stem());
    return names;
}

// `name` is one of deviceNames().
inline std::vector<uint8_t> deviceDescriptor(const std::string& name)
{
    for (const auto& file : deviceFiles())
        if (file.stem() == name)
            return bytesFromHexFile(file);
    throw std::runtime_error("there is no file " + name + ".hex");
}

} // namespace test
