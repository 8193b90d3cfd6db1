#include "report/format/descriptor_source.h"
#include "tools/ctl/cli/failure.h"
#include "tools/ctl/explain/description.h"
#include "tools/ctl/explain/phrases.h"
#include "tools/ctl/usb/device_words.h"
#include "tools/text/printable.h"

#include <filesystem>
#include <unistd.h>

namespace ctl {
namespace {

namespace fs = std::filesystem;
using Found = std::vector<report::FoundDescriptor>;

bool isReadable(const fs::path& file)
{
    std::error_code error;
    return access(file.c_str(), R_OK) == 0 && !fs::is_directory(file, error);
}

// "1: bus 001, device 005, interface 000, 2: ..."
std::string choicesIn(const Found& found)
{
    std::string text;
    for (size_t i = 0; i < found.size(); ++i) {
        const std::string label = text::printable(found[i].label);
        text += (i == 0 ? "" : "; ") + std::to_string(i + 1) + ": "
            + (label.empty() ? counted(found[i].bytes.size(), "byte") : label);
    }
    return text;
}

size_t chooseDescriptor(const Found& found, std::optional<size_t> number, const std::string& file)
{
    if (!number && found.size() == 1)
        return 0;
    if (number && *number >= 1 && *number <= found.size())
        return *number - 1;
    const std::string what = !number ? "has " + counted(found.size(), "descriptor")
                                     : "has no descriptor " + std::to_string(*number);
    throw Failure(
        kWrongUse, file + ' ' + what + "; choose one with --descriptor: " + choicesIn(found));
}

DescriptorOrigin fromFile(const std::string& file, std::optional<size_t> number)
{
    auto result = report::readDescriptors(file);
    if (const auto* const error = std::get_if<report::DescriptorError>(&result)) {
        const std::string text = text::printable(error->text);
        if (!isReadable(file))
            throw Failure(kNoAccess,
                text + "; a device is vvvv:pppp, a path or a number of kelprobectl list");
        throw Failure(kWrongUse, text + "; kelprobectl describe --help lists the formats");
    }
    auto& found = std::get<Found>(result);
    const std::string name = text::printable(file);
    report::FoundDescriptor& chosen = found[chooseDescriptor(found, number, name)];
    DescriptorOrigin origin;
    origin.text = name;
    origin.label = found.size() > 1 ? text::printable(chosen.label) : "";
    origin.bytes = std::move(chosen.bytes);
    if (chosen.ids) {
        origin.vendorId = chosen.ids->vendor;
        origin.productId = chosen.ids->product;
    }
    return origin;
}

DescriptorOrigin fromDevice(const std::optional<std::string>& choice)
{
    DeviceEntry device = chooseDevice(choice);
    const std::string text = idsText(device) + ' ' + nameText(device);
    if (device.descriptor.empty())
        throw Failure(kNoAccess,
            text + ": the report descriptor cannot be read"
                + (device.accessText.empty() ? "" : ": " + device.accessText));
    DescriptorOrigin origin;
    origin.bytes = device.descriptor;
    origin.text = text;
    origin.vendorId = device.vendorId;
    origin.productId = device.productId;
    origin.device = std::move(device);
    return origin;
}

} // namespace

DescriptorOrigin findDescriptor(
    const std::optional<std::string>& choice, std::optional<size_t> number)
{
    if (choice && !isDeviceChoice(*choice))
        return fromFile(*choice, number);
    if (number)
        throw Failure(kWrongUse, "--descriptor is for files only; a device has one descriptor");
    return fromDevice(choice);
}

} // namespace ctl
