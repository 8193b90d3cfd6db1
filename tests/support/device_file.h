// Report descriptors of real devices, from tests/data/devices.
#pragma once

#include <cctype>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace test {

inline std::vector<uint8_t> bytesFromHex(const std::string& text)
{
    std::string digits;
    for (const char c : text)
        if (std::isxdigit(static_cast<unsigned char>(c)))
            digits += c;
    std::vector<uint8_t> bytes;
    for (size_t i = 0; i + 1 < digits.size(); i += 2)
        bytes.push_back(static_cast<uint8_t>(std::stoul(digits.substr(i, 2), nullptr, 16)));
    return bytes;
}

// The bytes of a file of hexadecimal digits. Lines that begin with # are its header.
inline std::vector<uint8_t> bytesFromHexFile(const std::filesystem::path& path)
{
    std::ifstream file(path);
    if (!file)
        throw std::runtime_error("cannot read " + path.string());
    std::string digits;
    for (std::string line; std::getline(file, line);)
        if (!line.starts_with('#'))
            digits += line;
    return bytesFromHex(digits);
}

// `name`: the file's name without its ending.
inline std::vector<uint8_t> deviceDescriptor(const std::string& name)
{
    return bytesFromHexFile(std::string(KELPROBE_TEST_DATA) + "/devices/" + name + ".hex");
}

inline std::vector<std::string> deviceNames()
{
    std::vector<std::string> names;
    for (const auto& entry :
        std::filesystem::directory_iterator(std::string(KELPROBE_TEST_DATA) + "/devices"))
        if (entry.path().extension() == ".hex")
            names.push_back(entry.path().stem());
    return names;
}

} // namespace test
