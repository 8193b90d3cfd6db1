#include "tools/ctl/traffic/monitor.h"

#include "tools/ctl/usb/device_words.h"
#include "tools/text/printable.h"

namespace ctl {

using Report = ReportReader::Report;

namespace {

Json::Value deviceEvent(const char* event, const DeviceEntry& entry)
{
    Json::Value json;
    json["event"] = event;
    json["ids"] = idsText(entry);
    json["path"] = text::printable(entry.path);
    return json;
}

} // namespace

struct Monitor::Reports {
    // NOLINTNEXTLINE(clang-analyzer-optin.cplusplus.UninitializedObject): those are references
    Reports(const DeviceEntry& entry, const report::UsageNames& names)
        : hasDescriptor(!entry.descriptor.empty())
        , layout(report::readLayout(entry.descriptor))
        , words(layout, names)
    {
    }

    // None if the descriptor is unknown.
    Words describe(const report::Bytes& bytes)
    {
        if (!hasDescriptor)
            return {};
        return words.describe(report::wireReport(layout, report::ReportKind::kInput, bytes));
    }

    const bool hasDescriptor;
    const report::Layout layout;
    report::ReportWords words;
    size_t index = 0; // in the recording
};

Monitor::Monitor(const Options& options)
    : options_(options)
    , names_(report::UsageNames::load())
    , start_(std::chrono::steady_clock::now())
{
    if (!options.record.empty())
        recording_.emplace(options.record);
}

Monitor::End Monitor::show(const DeviceEntry& entry, const StopSignals& stop)
{
    HidConnection connection(entry);
    Reports device(entry, names_);
    showDevice(entry);
    if (recording_)
        device.index = recording_->addDevice({.name = text::printable(nameText(entry)),
            .physicalPath = entry.path,
            .vendorId = entry.vendorId,
            .productId = entry.productId,
            .descriptor = entry.descriptor});
    ReportReader reader(connection, stop);
    for (;;) {
        const std::vector<Report> reports = reader.take();
        if (reports.empty())
            return end(entry, reader.gone());
        for (const Report& report : reports)
            print(device, report);
    }
}

Monitor::End Monitor::end(const DeviceEntry& entry, bool gone) const
{
    if (gone && options_.json)
        Output::out().jsonLine(deviceEvent("gone", entry));
    return gone ? End::kGone : End::kStopped;
}

void Monitor::finish()
{
    if (recording_ && !recording_->finish())
        Output::err().line(
            "kelprobectl: " + options_.record + " is not written, because no device was opened");
    if (options_.json) {
        Json::Value json;
        json["event"] = "end";
        json["reports"] = Json::UInt64{count_};
        Output::out().jsonLine(json);
    }
    Output::err().line(std::to_string(count_) + (count_ == 1 ? " report" : " reports"));
}

void Monitor::showDevice(const DeviceEntry& entry)
{
    if (options_.json)
        Output::out().jsonLine(deviceEvent("opened", entry));
    Output::err().line("Input reports of " + idsText(entry) + ' ' + nameText(entry) + " on "
        + text::printable(entry.path) + ". Ctrl-C ends.");
    if (entry.descriptor.empty())
        Output::err().line("Its report descriptor cannot be read, so they have no meaning.");
}

void Monitor::print(Reports& device, const Report& report)
{
    ++count_;
    const auto time = std::chrono::duration_cast<std::chrono::microseconds>(report.time - start_);
    if (recording_)
        recording_->add({.device = device.index, .time = time, .bytes = report.bytes});
    const Words words = device.describe(report.bytes);
    if (options_.json) {
        Json::Value json;
        json["event"] = "report";
        json["time"] = Json::Int64{time.count()};
        json["report"] = report::toHex(report.bytes, "");
        if (device.hasDescriptor)
            addWords(json, words);
        Output::out().jsonLine(json);
        return;
    }
    Output& out = Output::out();
    out.line(timeText(time) + "  "
        + (device.hasDescriptor ? reportText(report.bytes, words, &out) : bytesText(report.bytes)));
}

} // namespace ctl
