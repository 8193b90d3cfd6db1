// A USB capture in the format of libpcap.
#pragma once

#include "tools/ctl/cli/output_file.h"
#include "tools/ctl/convert/usb_transfer.h"

#include <memory>

struct pcap;
struct pcap_dumper;

namespace ctl {

// Writes packets of link type LINKTYPE_USB_LINUX_MMAPPED, in which the kernel's usbmon gives them.
class CaptureFile {
public:
    // The file must outlive the object and is to be finished after it. Throws Failure, as do the
    // other functions.
    explicit CaptureFile(const OutputFile& file);

    // Adds the two packets of a transfer: its submission and its completion.
    void write(const UsbTransfer& transfer);

    // To be called once, after the last write().
    void finish();

private:
    struct Close {
        void operator()(pcap* handle) const;
        void operator()(pcap_dumper* dumper) const;
    };

    enum class Event : uint8_t { kSubmission = 'S', kCompletion = 'C' };
    void writePacket(const UsbTransfer& transfer, Event event);

    const OutputFile& file_;
    std::unique_ptr<pcap, Close> handle_;
    std::unique_ptr<pcap_dumper, Close> dumper_;
    uint64_t transfers_ = 0;
    report::Bytes packet_; // kept for its memory
};

} // namespace ctl
