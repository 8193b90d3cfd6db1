#include "tools/ctl/convert/capture_file.h"

#include "tools/ctl/cli/failure.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <endian.h>
#include <pcap/pcap.h>
#include <pcap/usb.h>

namespace ctl {
namespace {

constexpr int kMaxPacket = 262'144; // more than any packet here has
constexpr char kValid = 0;          // of the flags in the header
constexpr char kNoSetup = '-';
constexpr char kNoDataYet = '<';     // of a submission that receives data
constexpr char kNoDataAnymore = '>'; // of a completion that sent data
constexpr int32_t kInterval = 1;     // of the endpoints, in milliseconds

pcap_usb_setup onTheBus(const UsbSetup& setup)
{
    return {setup.requestType, setup.request, htole16(setup.value), htole16(setup.index),
        htole16(setup.length)};
}

} // namespace

void CaptureFile::Close::operator()(pcap* handle) const
{
    pcap_close(handle);
}

void CaptureFile::Close::operator()(pcap_dumper* dumper) const
{
    pcap_dump_close(dumper);
}

CaptureFile::CaptureFile(const OutputFile& file)
    : file_(file)
    , handle_(pcap_open_dead(DLT_USB_LINUX_MMAPPED, kMaxPacket))
{
    if (!handle_)
        file_.fail(ENOMEM);
    // Writes the head of the file. Takes the stream, and closes it if it fails.
    dumper_.reset(pcap_dump_fopen(handle_.get(), file.openStream()));
    if (!dumper_)
        file_.fail(errno);
}

void CaptureFile::write(const UsbTransfer& transfer)
{
    ++transfers_;
    writePacket(transfer, Event::kSubmission);
    writePacket(transfer, Event::kCompletion);
}

void CaptureFile::finish()
{
    if (pcap_dump_flush(dumper_.get()) != 0)
        file_.fail(errno);
    dumper_.reset();
}

void CaptureFile::writePacket(const UsbTransfer& transfer, Event event)
{
    const bool submission = event == Event::kSubmission;
    const bool hasData = submission != transfer.isIn();
    const auto size = static_cast<uint32_t>(transfer.data.size());

    pcap_usb_header_mmapped header{};
    static_assert(sizeof header == 64);
    header.id = transfers_;
    header.event_type = static_cast<uint8_t>(event);
    header.transfer_type = transfer.setup ? URB_CONTROL : URB_INTERRUPT;
    header.endpoint_number = transfer.endpoint;
    header.device_address = transfer.device;
    header.bus_id = transfer.bus;
    header.setup_flag = submission && transfer.setup ? kValid : kNoSetup;
    header.data_flag = hasData ? kValid : submission ? kNoDataYet : kNoDataAnymore;
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(transfer.time);
    header.ts_sec = seconds.count();
    header.ts_usec = static_cast<int32_t>((transfer.time - seconds).count());
    header.status = submission ? -EINPROGRESS : transfer.failed ? -EIO : 0;
    header.urb_len = !submission && transfer.failed ? 0 : size;
    header.data_len = hasData ? size : 0;
    if (header.setup_flag == kValid)
        header.s.setup = onTheBus(*transfer.setup);
    header.interval = transfer.setup ? 0 : kInterval;

    packet_.resize(sizeof header + header.data_len);
    std::memcpy(packet_.data(), &header, sizeof header);
    if (hasData)
        std::copy(transfer.data.begin(), transfer.data.end(), packet_.begin() + sizeof header);

    pcap_pkthdr head{};
    head.ts = {header.ts_sec, header.ts_usec};
    head.caplen = head.len = static_cast<bpf_u_int32>(packet_.size());
    auto* const user = reinterpret_cast<u_char*>(dumper_.get()); // as pcap_dump() takes it
    pcap_dump(user, &head, packet_.data());
    if (std::ferror(pcap_dump_file(dumper_.get())))
        file_.fail(errno);
}

} // namespace ctl
