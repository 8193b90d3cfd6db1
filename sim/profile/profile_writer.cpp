#include "sim/device/usage_text.h"
#include "sim/profile/profile_keys.h"
#include "sim/profile/profile_text.h"
#include "sim/profile/utf16.h"

#include <json/value.h>
#include <json/writer.h>

#include <algorithm>

namespace sim {
namespace {

Json::Value written(const std::u16string& units)
{
    if (const auto text = utf8(units))
        return *text;
    std::string hex;
    for (const char16_t unit : units)
        hex += (hex.empty() ? "" : " ") + hex16(unit);
    Json::Value value;
    value[keys::kUtf16] = hex;
    return value;
}

Json::Value written(const std::vector<Bytes>& reports)
{
    Json::Value list(Json::arrayValue);
    for (const Bytes& report : reports)
        list.append(toHex(report));
    return list;
}

Json::Value writtenHid(const InterfaceInfo& interface)
{
    Json::Value value;
    value[keys::kReportDescriptor] = toHex(interface.reportDescriptor);
    if (interface.subclass == InterfaceInfo::kBoot)
        value[keys::kBoot] = true;
    if (interface.classDescriptors) {
        Json::Value& list = value[keys::kClassDescriptors] = Json::Value(Json::arrayValue);
        for (const ClassDescriptor& entry : *interface.classDescriptors) {
            Json::Value item;
            item[keys::kType] = entry.type;
            item[keys::kLength] = entry.length;
            list.append(item);
        }
    }
    Json::Value& endpoints = value[keys::kEndpoints];
    endpoints[keys::kIn] = interface.inEndpoint;
    if (interface.outEndpoint)
        endpoints[keys::kOut] = interface.outEndpoint;
    endpoints[keys::kPacketSize] = interface.maxPacketSize;
    return value;
}

Json::Value written(const InterfaceInfo& interface)
{
    Json::Value value;
    if (interface.isHid()) {
        value = writtenHid(interface);
    } else {
        value[keys::kSubclass] = interface.subclass;
        value[keys::kProtocol] = interface.protocol;
    }
    const auto code = std::ranges::find(keys::kClassCodes, interface.interfaceClass);
    value[keys::kClass]
        = std::string(keys::kClasses[static_cast<size_t>(code - std::begin(keys::kClassCodes))]);
    value[keys::kNumber] = interface.number;
    return value;
}

// Only what differs from the default.
Json::Value written(const DeviceBehaviour& behaviour)
{
    const DeviceBehaviour standard;
    Json::Value value(Json::objectValue);
    if (behaviour.hookSwitch != standard.hookSwitch)
        value[keys::kHookSwitch]
            = std::string(keys::kHookSwitches[static_cast<size_t>(behaviour.hookSwitch)]);
    for (const std::string& lamp : behaviour.acknowledges)
        value[keys::kAcknowledges].append(lamp);
    if (behaviour.togglesMute)
        value[keys::kTogglesMute] = true;
    for (const Reaction& reaction : behaviour.reactions) {
        Json::Value item;
        item[keys::kLamp] = reaction.lamp;
        item[keys::kState] = std::string(keys::kStates[reaction.on ? 0 : 1]);
        item[keys::kReports] = written(reaction.reports);
        value[keys::kReactions].append(item);
    }
    if (!behaviour.onOpen.empty())
        value[keys::kOnOpen] = written(behaviour.onOpen);
    if (behaviour.lengthError != 0)
        value[keys::kLengthError] = behaviour.lengthError;
    if (behaviour.delay.count() != 0)
        value[keys::kDelayMs] = static_cast<Json::Int64>(behaviour.delay.count());
    return value;
}

} // namespace

std::string writeProfile(const Profile& profile)
{
    const UsbDeviceInfo& info = profile.info;
    Json::Value value;
    if (!profile.description.empty())
        value[keys::kDescription] = profile.description;
    value[keys::kVendorId] = hex16(info.vendorId);
    value[keys::kProductId] = hex16(info.productId);
    value[keys::kRelease] = hex16(info.release);
    value[keys::kManufacturer] = written(info.manufacturer);
    value[keys::kProduct] = written(info.product);
    value[keys::kSerialNumber] = written(info.serialNumber);
    value[keys::kSpeed] = std::string(keys::kSpeeds[static_cast<size_t>(info.speed)]);
    for (const InterfaceInfo& interface : info.interfaces)
        value[keys::kInterfaces].append(written(interface));
    Json::Value behaviour = written(info.behaviour);
    if (!behaviour.empty())
        value[keys::kBehaviour] = std::move(behaviour);
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "  ";
    builder["emitUTF8"] = true;
    return Json::writeString(builder, value) + '\n';
}

} // namespace sim
