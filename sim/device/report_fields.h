// Where the telephony controls lie in a device's reports. The simulated device
// reads its own report descriptor with this and with nothing of the product's,
// so that it is an independent check of what the product reads in it. Pure.
#pragma once

#include "sim/device/wire_bytes.h"

#include <map>

namespace sim {

enum class UsagePage : uint16_t { kLed = 0x08, kTelephony = 0x0b };

// A one-bit field of a report.
struct ReportField {
    UsagePage page;
    uint16_t usage = 0;
    uint8_t reportId = 0; // 0 in a device without report ids
    size_t bit = 0;       // counted from the first bit behind the report id
};

// Total bits, without the report id, of each report id.
using ReportSizes = std::map<uint8_t, size_t>;

struct ReportFields {
    bool numbered = false;            // every report starts with its id
    std::vector<ReportField> lamps;   // LED page, output reports, in descriptor order
    std::vector<ReportField> buttons; // telephony page, input reports, in descriptor order
    ReportSizes inputBits;
    ReportSizes outputBits;
};

// Total: what a broken descriptor says before it breaks is kept.
ReportFields findReportFields(const Bytes& reportDescriptor);

// A report of the size that `sizes` gives `id`, all bits clear, id first if
// `numbered`.
Bytes emptyReport(uint8_t id, const ReportSizes& sizes, bool numbered);

// The byte and mask of a field in a report as on the wire.
bool isSet(const ReportField& field, const Bytes& report, bool numbered);
void set(const ReportField& field, Bytes& report, bool numbered);

} // namespace sim
