// Plays the device's side of a recording.
#pragma once

#include "report/format/recording.h"
#include "sim/bench/bench.h"

namespace sim {

struct ReplayOptions {
    double speed = 1;   // 2 is twice as fast; more than 0
    bool check = false; // compare what the program sends with what was recorded
    std::chrono::milliseconds patience{5000}; // for each report that is expected of the program
};

// Sends the input reports when they are due, from when a program first reads from the device. With
// `check`, an input report waits for the reports of the program that come before it in the
// recording, and the time to the next report counts from when both were there. The program's
// reports are compared in their order; whether they come before or after an input report does not
// matter. A report that failed when it was recorded is expected, too, but does not fail. An input
// report that is lost is a difference. While the bench is held, so is the replay.
//
// Same thread as the bench.
class Replay final : private BenchListener {
public:
    // Called at the first difference, with an explanation of several lines.
    using DifferenceCallback = std::function<void(const std::string& explanation)>;

    // `reports` are those of one device. `bench` and `device` must outlive the object.
    Replay(Bench& bench, BenchDevice& device, std::vector<report::RecordedReport> reports,
        const ReplayOptions& options, DifferenceCallback onDifference);
    ~Replay() override;
    Replay(const Replay&) = delete;
    Replay& operator=(const Replay&) = delete;

    // Whether input reports are left.
    [[nodiscard]] bool isPlaying() const;

    // To be called after the program has ended and all events were dispatched. If reports are left,
    // that is a difference.
    void end();

private:
    using Direction = report::RecordedReport::Direction;
    enum class Sender { kDevice, kProgram };

    void onEvent(const BenchEvent& event) override;
    void onTick() override;
    std::optional<Time> nextTick() const override;

    void receive(const BenchEvent& event);
    void noteArrival(const BenchEvent& event);
    // Moves `index` to the next report of the sender; it may be there already.
    void findNext(size_t& index, Sender sender) const;
    static Sender senderOf(const report::RecordedReport& report);
    [[nodiscard]] std::optional<Time> inputTime() const;
    [[nodiscard]] std::optional<Time> outputLimit() const;
    [[nodiscard]] Time gapBefore(size_t index) const;
    void differ(size_t index, const std::string& found);
    [[nodiscard]] std::string context(size_t index) const;

    Bench& bench_;
    BenchDevice& device_;
    const std::vector<report::RecordedReport> reports_;
    const ReplayOptions options_;
    const DifferenceCallback onDifference_;
    std::optional<Time> opened_;
    Time latest_{}; // when the latest step was done
    // Indices of reports; the number of reports at the end.
    size_t nextInput_ = 0;   // the first that is not played
    size_t nextArrival_ = 0; // the first of those whose event has not come
    size_t nextOutput_ = 0;  // the program's first that has not come
    bool differs_ = false;
    bool announced_ = false; // that all was played
};

} // namespace sim
