#include "sim/profile/json_object.h"
#include "sim/profile/json_text.h"
#include "sim/profile/profile_keys.h"
#include "sim/profile/profile_text.h"
#include "sim/profile/utf16.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <utility>

namespace sim {
namespace {

// The bytes of hexadecimal text, with any blanks between pairs of digits.
std::optional<Bytes> hexBytes(const Json::Value& value, size_t maxSize)
{
    std::optional<Bytes> bytes;
    if (value.isString())
        bytes = fromHex(value.asString());
    return bytes && bytes->size() <= maxSize ? bytes : std::nullopt;
}

// A text, or the units of one that JSON cannot hold.
std::u16string takeString(JsonObject& device, const char* key)
{
    static constexpr const char* kExpected
        = R"(a text of at most 126 UTF-16 units or {"utf16": HEX} with four digits for each)";
    const Json::Value* const value = device.take(key);
    if (!value)
        return {};
    std::optional<std::u16string> units;
    if (value->isString()) {
        units = utf16(value->asString());
    } else if (value->isObject() && value->size() == 1 && value->isMember(keys::kUtf16)) {
        const auto bytes = hexBytes((*value)[keys::kUtf16], 2 * UsbDeviceInfo::kMaxStringUnits);
        if (bytes && bytes->size() % 2 == 0) {
            units.emplace();
            for (size_t i = 0; i < bytes->size(); i += 2)
                *units += static_cast<char16_t>((*bytes)[i] << 8 | (*bytes)[i + 1]);
        }
    }
    if (units && units->size() <= UsbDeviceInfo::kMaxStringUnits)
        return *units;
    device.mistakes().add(device.pathOf(key), kExpected, *value);
    return {};
}

Bytes takeDescriptor(JsonObject& interface, const DescriptorReader& read)
{
    static constexpr const char* kExpected = R"(hexadecimal text or {"file": NAME})";
    const Json::Value* const value = interface.take(keys::kReportDescriptor);
    const std::string path = interface.pathOf(keys::kReportDescriptor);
    Mistakes& mistakes = interface.mistakes();
    if (!value) {
        mistakes.add(path, std::string("expected ") + kExpected + ", found no such key");
        return {};
    }
    if (value->isObject() && value->size() == 1 && (*value)[keys::kFile].isString()) {
        const std::string name = (*value)[keys::kFile].asString();
        if (name.empty() || name.find('/') != name.npos || name.find('\0') != name.npos) {
            mistakes.add(path + '.' + keys::kFile, "the name of a file in the same folder",
                (*value)[keys::kFile]);
            return {};
        }
        auto result = read(name);
        if (const auto* const error = std::get_if<report::DescriptorError>(&result))
            mistakes.add(path + '.' + keys::kFile, error->text);
        else
            return std::get<report::DescriptorBytes>(std::move(result));
        return {};
    }
    auto bytes = hexBytes(*value, report::kMaxDescriptorSize);
    if (bytes && !bytes->empty())
        return std::move(*bytes);
    mistakes.add(path, kExpected, *value);
    return {};
}

std::vector<Bytes> takeReports(JsonObject& object, const char* key)
{
    std::vector<Bytes> reports;
    for (const auto& [value, path] : object.takeArray(key, 0, keys::kMaxReports)) {
        if (auto report = hexBytes(*value, keys::kMaxReportBytes))
            reports.push_back(std::move(*report));
        else
            object.mistakes().add(path,
                "a report as hexadecimal text of at most " + std::to_string(keys::kMaxReportBytes)
                    + " bytes",
                *value);
    }
    return reports;
}

class ProfileReader {
public:
    ProfileReader(const std::string& file, const DescriptorReader& readDescriptor)
        : mistakes_(file)
        , readDescriptor_(readDescriptor)
    {
    }

    Profile read(const Json::Value& json)
    {
        Profile profile;
        JsonObject device(json, "", mistakes_);
        device.take(keys::kSchema);
        profile.description = device.takeLine(keys::kDescription, keys::kMaxDescription);
        UsbDeviceInfo& info = profile.info;
        info.vendorId = device.takeHexNumber(keys::kVendorId);
        info.productId = device.takeHexNumber(keys::kProductId);
        info.release = device.takeHexNumber(keys::kRelease, info.release);
        info.manufacturer = takeString(device, keys::kManufacturer);
        info.product = takeString(device, keys::kProduct);
        info.serialNumber = takeString(device, keys::kSerialNumber);
        info.speed = static_cast<UsbSpeed>(
            device.takeWord(keys::kSpeed, keys::kSpeeds, static_cast<size_t>(UsbSpeed::kFull)));
        readInterfaces(device, info);
        if (const Json::Value* const behaviour = device.take(keys::kBehaviour))
            info.behaviour = readBehaviour(*behaviour, device.pathOf(keys::kBehaviour));
        device.finish();
        if (!mistakes_.list().empty())
            throw ProfileError(mistakes_.list());
        return profile;
    }

private:
    void readInterfaces(JsonObject& device, UsbDeviceInfo& info)
    {
        info.interfaces.clear();
        if (!device.has(keys::kInterfaces))
            mistakes_.add(keys::kInterfaces, "expected an array of interfaces, found no such key");
        std::set<uint8_t> numbers;
        for (const auto& [value, path] :
            device.takeArray(keys::kInterfaces, 1, InterfaceInfo::kNumbers)) {
            InterfaceInfo interface = readInterface(*value, path, info);
            if (!numbers.insert(interface.number).second)
                mistakes_.add(path + '.' + keys::kNumber,
                    "expected a number of its own, found " + std::to_string(interface.number)
                        + " again");
            info.interfaces.push_back(std::move(interface));
        }
    }

    InterfaceInfo readInterface(
        const Json::Value& value, const std::string& path, const UsbDeviceInfo& info)
    {
        JsonObject object(value, path, mistakes_);
        InterfaceInfo interface;
        const auto index = static_cast<int64_t>(info.interfaces.size());
        interface.number = static_cast<uint8_t>(
            object.takeInteger(keys::kNumber, 0, InterfaceInfo::kNumbers - 1, index));
        interface.interfaceClass
            = keys::kClassCodes[object.takeWord(keys::kClass, keys::kClasses, 0)];
        if (interface.isHid()) {
            readHid(object, interface, info);
        } else {
            interface.subclass
                = static_cast<uint8_t>(object.takeInteger(keys::kSubclass, 0, 255, 0));
            interface.protocol
                = static_cast<uint8_t>(object.takeInteger(keys::kProtocol, 0, 255, 0));
        }
        object.finish();
        return interface;
    }

    void readHid(JsonObject& object, InterfaceInfo& interface, const UsbDeviceInfo& info)
    {
        if (object.takeBoolean(keys::kBoot))
            interface.subclass = InterfaceInfo::kBoot;
        interface.reportDescriptor = takeDescriptor(object, readDescriptor_);
        if (object.has(keys::kClassDescriptors))
            interface.classDescriptors = readClassDescriptors(object);
        readEndpoints(object, interface, info);
    }

    std::vector<ClassDescriptor> readClassDescriptors(JsonObject& interface)
    {
        std::vector<ClassDescriptor> list;
        for (const auto& [value, path] :
            interface.takeArray(keys::kClassDescriptors, 0, keys::kMaxClassDescriptors)) {
            JsonObject object(*value, path, mistakes_);
            ClassDescriptor entry;
            entry.type = static_cast<uint8_t>(
                object.takeInteger(keys::kType, 0, 255, ClassDescriptor::kReport));
            entry.length = static_cast<uint16_t>(object.takeInteger(keys::kLength, 0, 65'535, 0));
            object.finish();
            list.push_back(entry);
        }
        return list;
    }

    // Without the key: the lowest numbers that are free, one of each direction.
    void readEndpoints(JsonObject& object, InterfaceInfo& interface, const UsbDeviceInfo& info)
    {
        const uint8_t in = freeEndpoint(info, &InterfaceInfo::inEndpoint);
        const uint8_t out = freeEndpoint(info, &InterfaceInfo::outEndpoint);
        const int64_t maxPacket = keys::kMaxPackets[static_cast<size_t>(info.speed)];
        const Json::Value* const value = object.take(keys::kEndpoints);
        const std::string path = object.pathOf(keys::kEndpoints);
        const Json::Value none(Json::objectValue);
        JsonObject endpoints(value ? *value : none, path, mistakes_);
        const auto number = [&](const char* key, int64_t fallback) {
            return static_cast<uint8_t>(endpoints.takeInteger(key, 1, 15, fallback));
        };
        interface.inEndpoint = number(keys::kIn, in);
        interface.outEndpoint = number(keys::kOut, value ? 0 : out);
        interface.maxPacketSize = static_cast<uint16_t>(endpoints.takeInteger(
            keys::kPacketSize, 1, maxPacket, std::min<int64_t>(maxPacket, 64)));
        endpoints.finish();
        requireFree(info, &InterfaceInfo::inEndpoint, interface, path + '.' + keys::kIn);
        requireFree(info, &InterfaceInfo::outEndpoint, interface, path + '.' + keys::kOut);
    }

    static bool uses(const UsbDeviceInfo& info, uint8_t InterfaceInfo::*endpoint, uint8_t number)
    {
        return std::ranges::any_of(info.interfaces,
            [=](const InterfaceInfo& other) { return other.isHid() && other.*endpoint == number; });
    }

    static uint8_t freeEndpoint(const UsbDeviceInfo& info, uint8_t InterfaceInfo::*endpoint)
    {
        uint8_t number = 1;
        while (uses(info, endpoint, number))
            ++number;
        return number;
    }

    void requireFree(const UsbDeviceInfo& info, uint8_t InterfaceInfo::*endpoint,
        const InterfaceInfo& interface, const std::string& path)
    {
        const uint8_t number = interface.*endpoint;
        if (number > 15)
            mistakes_.add(path, "expected at most 15 endpoints of a direction, found more");
        else if (number != 0 && uses(info, endpoint, number))
            mistakes_.add(path,
                "expected an endpoint of its own, found " + std::to_string(number) + " again");
    }

    DeviceBehaviour readBehaviour(const Json::Value& value, const std::string& path)
    {
        JsonObject object(value, path, mistakes_);
        DeviceBehaviour behaviour;
        behaviour.hookSwitch
            = static_cast<HookSwitch>(object.takeWord(keys::kHookSwitch, keys::kHookSwitches, 0));
        for (const auto& [lamp, lampPath] :
            object.takeArray(keys::kAcknowledges, 0, std::size(keys::kLamps)))
            behaviour.acknowledges.push_back(lampName(*lamp, lampPath));
        behaviour.togglesMute = object.takeBoolean(keys::kTogglesMute);
        for (const auto& [reaction, reactionPath] :
            object.takeArray(keys::kReactions, 0, keys::kMaxReports))
            behaviour.reactions.push_back(readReaction(*reaction, reactionPath));
        behaviour.onOpen = takeReports(object, keys::kOnOpen);
        behaviour.lengthError = static_cast<int>(object.takeInteger(
            keys::kLengthError, -keys::kMaxLengthError, keys::kMaxLengthError, 0));
        behaviour.delay = std::chrono::milliseconds(
            object.takeInteger(keys::kDelayMs, 0, keys::kMaxDelayMs, 0));
        object.finish();
        return behaviour;
    }

    Reaction readReaction(const Json::Value& value, const std::string& path)
    {
        JsonObject object(value, path, mistakes_);
        Reaction reaction;
        const Json::Value* const lamp = object.take(keys::kLamp);
        reaction.lamp
            = lampName(lamp ? *lamp : Json::Value::nullSingleton(), object.pathOf(keys::kLamp));
        reaction.on = object.takeWord(keys::kState, keys::kStates, 0) == 0;
        reaction.reports = takeReports(object, keys::kReports);
        object.finish();
        return reaction;
    }

    std::string lampName(const Json::Value& value, const std::string& path)
    {
        std::string name = value.isString() ? value.asString() : "";
        if (std::ranges::find(keys::kLamps, name) == std::end(keys::kLamps)) {
            std::string expected = "one of";
            for (const std::string_view lamp : keys::kLamps)
                expected += ' ' + std::string(lamp);
            mistakes_.add(path, expected, value);
        }
        return name;
    }

    Mistakes mistakes_;
    const DescriptorReader& readDescriptor_;
};

} // namespace

bool isProfile(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r\n";
    text = withoutByteOrderMark(text);
    const size_t begin = text.find_first_not_of(blanks);
    if (begin == text.npos || (text[begin] != '{' && text[begin] != '['))
        return false;
    if (text[begin] == '[')
        return true;
    const size_t next = text.find_first_not_of(blanks, begin + 1);
    constexpr std::string_view nextInJson = "\"}{[";
    return next == text.npos || nextInJson.find(text[next]) != nextInJson.npos;
}

Profile parseProfile(
    std::string_view text, const std::string& file, const DescriptorReader& readDescriptor)
{
    if (text.size() > kMaxProfileSize)
        throw ProfileError({file + ": expected at most " + std::to_string(kMaxProfileSize)
            + " bytes, found " + std::to_string(text.size())});
    Profile profile = ProfileReader(file, readDescriptor).read(parseJson(text, file));
    const std::filesystem::path path = file;
    profile.name = path.extension() == ".json" ? path.stem() : path.filename();
    return profile;
}

} // namespace sim
