// Parsing report descriptors, which is done once for each kind of device.
#include "bench/program/measurements.h"
#include "bench/program/samples.h"

#include "hid/model/BuiltInDescriptor.h"
#include "hid/model/Root.h"
#include "report/layout.h"
#include "tests/support/device_file.h"

#include <span>

namespace bench {
namespace {

using Bytes = std::vector<uint8_t>;

// The least code that reads every item and its value.
uint32_t passOver(std::span<const uint8_t> descriptor)
{
    uint32_t sum = 0;
    for (size_t at = 0; at < descriptor.size();) {
        const uint8_t prefix = descriptor[at++];
        const size_t size = (prefix & 3) == 3 ? 4 : prefix & 3;
        if (descriptor.size() - at < size)
            break;
        uint32_t value = 0;
        for (size_t i = size; i > 0; --i)
            value = value << 8 | descriptor[at + i - 1];
        at += size;
        sum += prefix ^ value;
    }
    return sum;
}

void keep(uint32_t value)
{
    asm volatile("" : : "r"(value));
}

double perByte(int64_t begin, const std::vector<Bytes>& descriptors)
{
    size_t bytes = 0;
    for (const Bytes& descriptor : descriptors)
        bytes += descriptor.size();
    return static_cast<double>(now() - begin) / static_cast<double>(bytes);
}

// Nanoseconds a byte, without destroying the trees: the program keeps its trees until it ends.
double timeParse(const std::vector<Bytes>& descriptors)
{
    std::vector<KX::Root> trees(descriptors.size());
    const int64_t begin = now();
    for (size_t i = 0; i < descriptors.size(); ++i)
        trees[i].Parse(descriptors[i]);
    return perByte(begin, descriptors);
}

// The same for the full reading.
double timeLayout(const std::vector<Bytes>& descriptors)
{
    std::vector<report::Layout> layouts;
    layouts.reserve(descriptors.size());
    const int64_t begin = now();
    for (const Bytes& descriptor : descriptors)
        layouts.push_back(report::readLayout(descriptor));
    return perByte(begin, descriptors);
}

double timePass(const std::vector<Bytes>& descriptors)
{
    const int64_t begin = now();
    for (const Bytes& descriptor : descriptors)
        keep(passOver(descriptor));
    return perByte(begin, descriptors);
}

Bytes repeated(const Bytes& descriptor, size_t size)
{
    Bytes result;
    while (result.size() < size)
        result.insert(result.end(), descriptor.begin(), descriptor.end());
    return result;
}

} // namespace

void measureDescriptors(sim::UsbBus&)
{
    constexpr int rounds = 501; // of less than a millisecond
    std::vector<Bytes> files;
    for (const std::string& name : test::deviceNames())
        files.push_back(test::deviceDescriptor(name));
    const Bytes builtIn(KX::kBuiltInDescriptor.begin(), KX::kBuiltInDescriptor.end());
    const std::vector<Bytes> large{repeated(builtIn, 64 * 1024)};
    const std::vector<Bytes> small(64, repeated(builtIn, 1024));

    Samples all;
    Samples layouts;
    Samples length;
    for (int round = 0; round < rounds; ++round) {
        all.subject.push_back(timeParse(files));
        all.peer.push_back(timePass(files));
        layouts.subject.push_back(timeLayout(files));
        length.subject.push_back(timeParse(large));
        length.peer.push_back(timeParse(small));
    }
    printRow({"descriptor parse, all device files, a byte", "a plain pass over the items", "<= 8",
                 kNanoseconds},
        all);
    layouts.peer = all.peer;
    printRow({"full reading, all device files, a byte", "a plain pass over the items", "<= 12",
                 kNanoseconds},
        layouts);
    printRow(
        {"descriptor parse, one of 64 KiB, a byte", "64 of 1 KiB", "linear", kNanoseconds}, length);
}

} // namespace bench
