#include "tools/ctl/meeting/journal.h"

#include "tools/ctl/calls/hid_calls.h"

#include <QAbstractEventDispatcher>

#include <atomic>
#include <cassert>
#include <optional>
#include <utility>

namespace ctl {
namespace {

using std::chrono::microseconds;

std::atomic<Journal*> currentJournal = nullptr;

microseconds now()
{
    return std::chrono::duration_cast<microseconds>(
        std::chrono::steady_clock::now().time_since_epoch());
}

std::optional<Entry::Kind> kindOf(const hid_call& call)
{
    switch (call.kind) {
    case HID_CALL_OPEN:
        return call.result == 0 ? Entry::Kind::kOpened : Entry::Kind::kNotOpened;
    case HID_CALL_CLOSE:
        return Entry::Kind::kClosed;
    case HID_CALL_WRITE:
        return Entry::Kind::kSent;
    case HID_CALL_READ:
        return call.result >= 0 ? Entry::Kind::kReceived : Entry::Kind::kGone;
    default: // the stack makes no other calls
        return std::nullopt;
    }
}

void observe(const hid_call* call)
{
    const auto kind = kindOf(*call);
    if (!kind)
        return;
    Entry entry{.kind = *kind,
        .time = microseconds(call->begin + call->duration),
        .failed = call->result < 0,
        .usbError = call->usb_error,
        .duration = microseconds(call->duration)};
    if (call->data)
        entry.report.assign(call->data, call->data + call->size);
    currentJournal.load()->add(std::move(entry));
}

} // namespace

bool isEvent(Entry::Kind kind)
{
    return kind >= Entry::Kind::kAccept && kind <= Entry::Kind::kUnmute;
}

Journal::Journal(Listener listener)
    : thread_(std::this_thread::get_id())
    , dispatcher_(QAbstractEventDispatcher::instance())
    , listener_(std::move(listener))
{
    assert(dispatcher_);
    [[maybe_unused]] const Journal* const other = currentJournal.exchange(this);
    assert(!other);
    hid_calls_observe(observe);
}

Journal::~Journal()
{
    assert(!isOpen());
    hid_calls_observe(nullptr);
    currentJournal = nullptr;
}

void Journal::add(Entry entry)
{
    if (entry.time == microseconds{})
        entry.time = now();
    {
        const std::lock_guard lock(mutex_);
        switch (entry.kind) {
        case Entry::Kind::kOpened:
            open_ = true;
            gone_ = false;
            openError_ = 0;
            break;
        case Entry::Kind::kNotOpened:
            openError_ = entry.usbError;
            break;
        case Entry::Kind::kClosed:
            open_ = false;
            break;
        case Entry::Kind::kGone:
            if (std::exchange(gone_, true))
                return; // every later read fails as well
            break;
        default:
            break;
        }
        pending_.push_back(std::move(entry));
    }
    if (std::this_thread::get_id() == thread_)
        deliver();
    else
        dispatcher_->wakeUp();
}

void Journal::deliver()
{
    std::vector<Entry> entries;
    {
        const std::lock_guard lock(mutex_);
        entries.swap(pending_);
    }
    for (const Entry& entry : entries) {
        if (failure_)
            return;
        try {
            listener_(entry);
        } catch (...) {
            failure_ = std::current_exception(); // hidapi's callers do not expect one
        }
    }
}

void Journal::check() const
{
    if (failure_)
        std::rethrow_exception(failure_);
}

bool Journal::isOpen() const
{
    const std::lock_guard lock(mutex_);
    return open_;
}

int Journal::openError() const
{
    const std::lock_guard lock(mutex_);
    return openError_;
}

} // namespace ctl
