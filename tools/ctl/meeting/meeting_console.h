// A meeting that is played by commands from standard input.
#pragma once

#include "tools/ctl/meeting/entry_words.h"
#include "tools/ctl/meeting/event_loop.h"
#include "tools/ctl/meeting/input_lines.h"
#include "tools/ctl/meeting/session.h"
#include "tools/ctl/traffic/recording_file.h"

#include <optional>
#include <string>

namespace ctl {

struct MeetingOptions {
    std::optional<std::string> device;
    bool json = false;
    std::optional<std::string> recording; // path
};

class MeetingConsole {
public:
    // Chooses the device. Throws Failure.
    explicit MeetingConsole(const MeetingOptions& options);

    // Plays the meeting until the input ends. Returns the exit status. Throws Failure.
    [[nodiscard]] int run();

private:
    void handle(const Entry& entry);
    void refuse(const Entry& entry);
    void record(const Entry& entry);
    void play(HidController& meeting);
    void obey(HidController& meeting, const std::string& input);

    const bool json_;
    const DeviceEntry device_;
    EventLoop loop_;
    InputLines input_;
    EntryWords words_;
    std::optional<RecordingFile> recording_;
    std::optional<std::chrono::microseconds> firstReport_; // when it was exchanged
    bool started_ = false;                                 // there was an entry
    bool sent_ = false;                                    // at least one report
    bool gone_ = false;
    bool refused_ = false; // a report was not taken
    bool quit_ = false;
    Journal journal_;
};

} // namespace ctl
