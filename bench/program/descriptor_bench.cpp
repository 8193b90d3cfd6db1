// Parsing report descriptors, which is done once for each kind of device.
#include "measurements.h"
#include "samples.h"

#include "BuiltInDescriptor.h"
#include "Root.h"
#include "device_file.h"

#include <span>

namespace bench {
namespace {

using Bytes = std::vector<uint8_t>;

// The least that sees every item and its value.
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

void parse(const Bytes& descriptor)
{
    KX::Root root;
    root.Parse(descriptor);
}

// Nanoseconds a byte, doing all `repeats` times.
template <typename Action>
double timePerByte(const std::vector<Bytes>& descriptors, int repeats, const Action& action)
{
    size_t bytes = 0;
    const int64_t begin = now();
    for (int repeat = 0; repeat < repeats; ++repeat)
        for (const Bytes& descriptor : descriptors) {
            action(descriptor);
            bytes += descriptor.size();
        }
    return static_cast<double>(now() - begin) / static_cast<double>(bytes);
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
    std::vector<Bytes> files;
    for (const std::string& name : test::deviceNames())
        files.push_back(test::deviceDescriptor(name));
    const Bytes builtIn(KX::kBuiltInDescriptor.begin(), KX::kBuiltInDescriptor.end());
    const std::vector<Bytes> tall{repeated(builtIn, 64 * 1024)};
    const std::vector<Bytes> low{repeated(builtIn, 1024)};

    Samples all;
    Samples length;
    for (int round = 0; round < kRounds; ++round) {
        all.subject.push_back(timePerByte(files, 200, parse));
        all.peer.push_back(timePerByte(files, 200, [](const Bytes& d) { keep(passOver(d)); }));
        length.subject.push_back(timePerByte(tall, 10, parse));
        length.peer.push_back(timePerByte(low, 640, parse));
    }
    printRow({"descriptor parse, all device files, a byte", "a plain pass over the items", "<= 8",
                 kNanoseconds},
        all);
    printRow({"descriptor parse, 64 KiB, a byte", "1 KiB", "linear", kNanoseconds}, length);
}

} // namespace bench
