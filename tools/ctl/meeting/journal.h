// What happens in a meeting, in the order in which it happens: calls to hidapi, events from the
// device, and log lines.
#pragma once

#include "report/bytes.h"

#include <chrono>
#include <exception>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

class QAbstractEventDispatcher;

namespace ctl {

struct Entry {
    enum class Kind {
        kOpened,
        kNotOpened,
        kClosed,
        kSent,     // an output report
        kReceived, // an input report
        kGone,     // reading failed: the device was unplugged
        kAccept,   // events from the device, as the host passes them on
        kReject,
        kMute,
        kUnmute,
        kLog, // a line of the controller
    };

    Kind kind = Kind::kLog;
    std::chrono::microseconds time{}; // on the steady clock; of a call its end
    std::chrono::steady_clock::time_point arrival = std::chrono::steady_clock::now();
    report::Bytes report = {};            // of kSent and kReceived
    bool failed = false;                  // kSent: the device did not take the report
    int usbError = 0;                     // libusb's error of a failed call, 0 if unknown
    std::chrono::microseconds duration{}; // of a call
    std::string text = {};                // of kLog
};

[[nodiscard]] bool isEvent(Entry::Kind kind);

// Observes the calls of the process to hidapi while it exists, so there is at most one. Belongs to
// the thread of the application object.
class Journal {
public:
    using Listener = std::function<void(const Entry&)>;

    // The listener gets every entry, in order, on the journal's thread. After it has thrown an
    // exception it gets no more.
    explicit Journal(Listener listener);
    ~Journal();
    Journal(const Journal&) = delete;
    Journal& operator=(const Journal&) = delete;

    // Any thread. The entries of other threads wake the event loop. They are delivered by
    // deliver(), or with the next entry of the journal's own thread. Does not throw.
    void add(Entry entry);

    // Delivers what other threads have added, which EventLoop does on each turn. Does not throw.
    void deliver();

    // Throws what the listener threw. To be called from outside the event loop.
    void check() const;

    // Whether hidapi has a device open.
    [[nodiscard]] bool isOpen() const;
    // Why the last open failed: libusb's error, 0 if unknown or if there was none.
    [[nodiscard]] int openError() const;

private:
    const std::thread::id thread_;
    QAbstractEventDispatcher* const dispatcher_; // of this thread; the application owns it
    const Listener listener_;
    std::exception_ptr failure_;

    mutable std::mutex mutex_; // guards the fields below
    std::vector<Entry> pending_;
    bool open_ = false;
    bool gone_ = false; // since the open
    int openError_ = 0;
};

} // namespace ctl
