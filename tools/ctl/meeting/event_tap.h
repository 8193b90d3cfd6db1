// Stands between a host and its controller, to observe the events of the device.
#pragma once

#include "app/hidcontroller.h"
#include "tools/ctl/meeting/journal.h"

#include <functional>
#include <memory>

namespace ctl {

// Where a controller gets its host from.
struct HostFunctions {
    std::function<IKXHost*(IKXHostCallback* callback)> create = CreateKXHost;
    void (*destroy)(IKXHost* host) = DestroyKXHost;
};

// Adds each event to a journal, then passes it on to the controller: what the controller does with
// it on its own thread comes later in the journal. A process has at most one.
class EventTap final : public IKXHostCallback {
public:
    EventTap(Journal& journal, HostFunctions functions);
    ~EventTap();
    EventTap(const EventTap&) = delete;
    EventTap& operator=(const EventTap&) = delete;

    // Makes a controller whose host calls the tap. The tap must outlive it.
    [[nodiscard]] std::unique_ptr<HidController> makeController();

    // The controller's host, null before there is one.
    [[nodiscard]] IKXHost* host() const { return host_; }

    // On the host's reader thread.
    void OnCommand(KXCommand command, void* reserved) override;
    void OnState(KXState state, const uint8_t* value) override;

private:
    class Controller;

    static IKXHost* createHost(IKXHostCallback* callback);

    Journal& journal_;
    const HostFunctions functions_;
    HidController* controller_ = nullptr; // set before there is a host
    IKXHost* host_ = nullptr;             // the controller owns it
};

} // namespace ctl
