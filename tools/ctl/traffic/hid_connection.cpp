#include "tools/ctl/traffic/hid_connection.h"

#include "tools/ctl/traffic/failure_words.h"
#include "tools/ctl/usb/device_words.h"

#include <libusb.h>

namespace ctl {
namespace {

constexpr size_t kMaxReportSize = 65'535; // USB gives the length in 16 bits

thread_local int lastError = 0; // libusb's, of this thread's last call that failed

void observe(const hid_call* call)
{
    if (call->result < 0)
        lastError = call->usb_error;
}

std::string whyNotOpened(const DeviceEntry& entry)
{
    if (!entry.accessText.empty() && entry.access != Access::kNotTried)
        return entry.accessText;
    return std::string(usbFailure(lastError).text) + "; kelprobectl doctor explains more";
}

} // namespace

HidConnection::HidConnection(const DeviceEntry& entry)
    : name_(idsText(entry))
    , buffer_(kMaxReportSize)
{
    lastError = 0;
    hid_calls_observe(observe);
    device_.reset(hid_open_path(entry.path.c_str()));
    if (!device_ && (lastError == LIBUSB_ERROR_NO_DEVICE || lastError == 0))
        failGone(); // since it was chosen
    if (!device_)
        throw Failure(kNoAccess, name_ + " cannot be opened: " + whyNotOpened(entry));
}

std::span<const uint8_t> HidConnection::read(int milliseconds)
{
    const int size = hid_read_timeout(device_.get(), buffer_.data(), buffer_.size(), milliseconds);
    if (size < 0) // hidapi gives no other reason
        failGone();
    return {buffer_.data(), static_cast<size_t>(size)};
}

void HidConnection::write(std::span<const uint8_t> report)
{
    if (hid_write(device_.get(), report.data(), report.size()) < 0)
        fail();
}

void HidConnection::sendFeature(std::span<const uint8_t> report)
{
    if (hid_send_feature_report(device_.get(), report.data(), report.size()) < 0)
        fail();
}

void HidConnection::fail() const
{
    if (lastError == LIBUSB_ERROR_NO_DEVICE)
        failGone();
    throw Failure(
        kFellShort, name_ + " did not take the report: " + std::string(usbFailure(lastError).text));
}

void HidConnection::failGone() const
{
    throw DeviceGone(name_ + " has gone");
}

} // namespace ctl
