// Where the telephony controls are in a device's reports. Pure.
//
// The simulated device does not read its report descriptor with the product's parser but with this
// one, so that the two check each other.
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
    size_t bit = 0;       // counted from the first bit after the report id
};

// The size in bits of the report of each id, without the id itself.
using ReportSizes = std::map<uint8_t, size_t>;

struct ReportFields {
    bool hasReportIds = false;        // every report starts with its id
    std::vector<ReportField> leds;    // LED page, output reports, in descriptor order
    std::vector<ReportField> buttons; // telephony page, input reports, in descriptor order
    ReportSizes inputBits;
    ReportSizes outputBits;
};

// Never fails. Of a broken descriptor, the part before the fault is used.
ReportFields findReportFields(const Bytes& reportDescriptor);

// A report of the size that `sizes` has for `id`, with all bits clear, id first if `hasReportIds`.
Bytes emptyReport(uint8_t id, const ReportSizes& sizes, bool hasReportIds);

// These read and set a field in a report as on the wire. A field beyond the report's end is clear
// and stays so.
bool isSet(const ReportField& field, const Bytes& report, bool hasReportIds);
void set(const ReportField& field, Bytes& report, bool hasReportIds);

} // namespace sim
