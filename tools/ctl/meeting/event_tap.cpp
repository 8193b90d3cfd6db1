#include "tools/ctl/meeting/event_tap.h"

#include <cassert>
#include <utility>

namespace ctl {
namespace {

EventTap* currentTap = nullptr; // for the function that makes a host: it has no argument for a tap

} // namespace

class EventTap::Controller final : public HidController {
public:
    Controller()
    {
        m_createHost = EventTap::createHost;
        m_destroyHost = currentTap->functions_.destroy;
    }
};

EventTap::EventTap(Journal& journal, HostFunctions functions)
    : journal_(journal)
    , functions_(std::move(functions))
{
    assert(!currentTap);
    currentTap = this;
}

EventTap::~EventTap()
{
    currentTap = nullptr;
}

std::unique_ptr<HidController> EventTap::makeController()
{
    return std::make_unique<Controller>();
}

IKXHost* EventTap::createHost(IKXHostCallback* callback)
{
    currentTap->controller_ = static_cast<HidController*>(callback);
    currentTap->host_ = currentTap->functions_.create(currentTap);
    return currentTap->host_;
}

// Not by virtual calls: when Controller has been destroyed and HidController not yet, which ends
// the reader thread, the object changes its class.
void EventTap::OnCommand(KXCommand command, void* reserved)
{
    using Kind = Entry::Kind;
    journal_.add({.kind = command == KXCommand::Accept ? Kind::kAccept : Kind::kReject});
    controller_->HidController::OnCommand(command, reserved);
}

void EventTap::OnState(KXState state, const uint8_t* value)
{
    using Kind = Entry::Kind;
    journal_.add({.kind = *value ? Kind::kMute : Kind::kUnmute}); // the only state that it sends
    controller_->HidController::OnState(state, value);
}

} // namespace ctl
