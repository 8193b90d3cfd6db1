#include "sim/bus/urb_queue.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace sim {

bool UrbQueue::addInput(const Bytes& report)
{
    if (input_.size() >= kMaxInput)
        return false;
    input_.push_back(report);
    deliver();
    return true;
}

void UrbQueue::waitForInput(Urb urb)
{
    urb.input = true;
    waiting_.push_back(std::move(urb));
    deliver();
}

void UrbQueue::deliver()
{
    while (!input_.empty() && !waiting_.empty()) {
        Urb urb = std::move(waiting_.front());
        waiting_.pop_front();
        urb.data = std::move(input_.front());
        input_.pop_front();
        const size_t room = urb.buffer ? bytesOf(urb.buffer).size() : 0;
        urb.data.resize(std::min(urb.data.size(), room));
        urb.transferred = urb.data.size();
        finish(std::move(urb), 0);
    }
}

void UrbQueue::finish(Urb urb, int status)
{
    urb.status = status;
    finished_.push_back(std::move(urb));
}

void UrbQueue::finishAllWaiting(int status)
{
    for (Urb& urb : waiting_)
        finish(std::move(urb), status);
    waiting_.clear();
}

bool UrbQueue::discard(UMockdevIoctlClient* owner, unsigned long requestAddress)
{
    const auto found = std::find_if(waiting_.begin(), waiting_.end(), [=](const Urb& urb) {
        return urb.owner == owner && urb.request->client_addr == requestAddress;
    });
    if (found == waiting_.end())
        return false;
    finish(std::move(*found), -ENOENT);
    waiting_.erase(found);
    return true;
}

std::optional<Urb> UrbQueue::reap(UMockdevIoctlClient* owner)
{
    const auto found = std::find_if(
        finished_.begin(), finished_.end(), [owner](const Urb& urb) { return urb.owner == owner; });
    if (found == finished_.end())
        return std::nullopt;
    std::optional<Urb> urb = std::move(*found);
    finished_.erase(found);
    return urb;
}

void UrbQueue::removeClient(UMockdevIoctlClient* client)
{
    const auto owned = [client](const Urb& urb) { return urb.owner == client; };
    waiting_.remove_if(owned);
    finished_.remove_if(owned);
}

bool UrbQueue::allInputReaped() const
{
    return input_.empty() && std::none_of(finished_.begin(), finished_.end(), [](const Urb& urb) {
        return urb.input && urb.status == 0;
    });
}

} // namespace sim
