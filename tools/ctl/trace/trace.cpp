#include "tools/ctl/trace/trace.h"

#include "tools/ctl/cli/failure.h"

namespace ctl {
namespace {

std::chrono::microseconds now()
{
    return std::chrono::duration_cast<std::chrono::microseconds>(
        std::chrono::steady_clock::now().time_since_epoch());
}

} // namespace

Trace::Trace(const Options& options)
    : options_(options)
    , start_(now())
    , names_(report::UsageNames::load())
    , devices_(names_)
{
    if (!options.output.empty())
        output_.emplace(options.output);
    if (!options.record.empty())
        recorder_.emplace(options.record);
}

void Trace::add(const Call& call)
{
    TracedCall traced{call};
    empty_ = false;
    traced.otherProcess = call.process != program_;
    // A process in a time namespace may have another clock.
    traced.time = std::max(call.time() - start_, std::chrono::microseconds());
    if (TrafficDevice* const device = devices_.take(call)) {
        traced.device = device;
        if (!call.data.empty() && call.kind != HID_CALL_DESCRIPTOR)
            traced.words = device->words(call);
    }
    guard([&] { write(traced); });
}

bool Trace::finish()
{
    guard([this] {
        if (output_)
            output_->finish();
        if (recorder_)
            finishRecording();
    });
    return !failed_;
}

void Trace::write(const TracedCall& traced)
{
    if (recorder_)
        recorder_->add(traced);
    if (options_.json) {
        print(jsonLineText(traceJson(traced)));
        return;
    }
    const std::string line = traceLine(traced, output_ ? nullptr : &Output::err());
    if (!line.empty())
        print(line);
}

void Trace::print(const std::string& line)
{
    if (output_)
        output_->write(line + '\n');
    else if (options_.output.empty())
        Output::err().line(line);
}

void Trace::finishRecording()
{
    if (!recorder_->finish())
        Output::err().line(
            "kelprobectl: " + options_.record + " is not written, because no device was opened");
}

void Trace::guard(const std::function<void()>& action)
{
    try {
        action();
    } catch (const Failure& failure) {
        Output::err().line(std::string("kelprobectl: ") + failure.what() + "; the trace ends here");
        failed_ = true;
        output_.reset();
        recorder_.reset();
    }
}

} // namespace ctl
