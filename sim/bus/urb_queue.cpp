#include "sim/bus/urb_queue.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace sim {

void UrbQueue::Endpoint::clear()
{
    input.clear();
    inputBytes = 0;
}

bool UrbQueue::addInput(uint8_t address, const Bytes& report)
{
    Endpoint& endpoint = endpoints_[address];
    if (endpoint.input.size() >= kMaxInput || endpoint.inputBytes + report.size() > kMaxInputBytes)
        return false;
    endpoint.input.push_back(report);
    endpoint.inputBytes += report.size();
    deliver(endpoint);
    return true;
}

void UrbQueue::waitForInput(uint8_t address, Urb urb)
{
    Endpoint& endpoint = endpoints_[address];
    urb.input = true;
    endpoint.waiting.push_back(std::move(urb));
    deliver(endpoint);
}

void UrbQueue::deliver(Endpoint& endpoint)
{
    while (!endpoint.input.empty() && !endpoint.waiting.empty()) {
        Urb urb = std::move(endpoint.waiting.front());
        endpoint.waiting.pop_front();
        Bytes& report = endpoint.input.front();
        const size_t room = urb.buffer ? bytesOf(urb.buffer).size() : 0;
        urb.transferred = std::min(report.size(), room);
        const auto end = report.begin() + static_cast<Bytes::difference_type>(urb.transferred);
        urb.data.assign(report.begin(), end);
        endpoint.inputBytes -= urb.transferred;
        report.erase(report.begin(), end);
        if (report.empty())
            endpoint.input.pop_front();
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
    for (auto& [address, endpoint] : endpoints_) {
        for (Urb& urb : endpoint.waiting)
            finish(std::move(urb), status);
        endpoint.waiting.clear();
    }
}

bool UrbQueue::discard(UMockdevIoctlClient* owner, unsigned long requestAddress)
{
    for (auto& [address, endpoint] : endpoints_) {
        const auto found = std::ranges::find_if(endpoint.waiting, [=](const Urb& urb) {
            return urb.owner == owner && urb.request->client_addr == requestAddress;
        });
        if (found == endpoint.waiting.end())
            continue;
        finish(std::move(*found), -ENOENT);
        endpoint.waiting.erase(found);
        return true;
    }
    return false;
}

std::optional<Urb> UrbQueue::reap(UMockdevIoctlClient* owner)
{
    const auto found = std::ranges::find(finished_, owner, &Urb::owner);
    if (found == finished_.end())
        return std::nullopt;
    std::optional<Urb> urb = std::move(*found);
    finished_.erase(found);
    return urb;
}

void UrbQueue::removeClient(UMockdevIoctlClient* client)
{
    const auto owned = [client](const Urb& urb) { return urb.owner == client; };
    for (auto& [address, endpoint] : endpoints_)
        endpoint.waiting.remove_if(owned);
    finished_.remove_if(owned);
}

bool UrbQueue::allInputReaped() const
{
    return std::ranges::all_of(
               endpoints_, [](const auto& entry) { return entry.second.input.empty(); })
        && std::ranges::none_of(
            finished_, [](const Urb& urb) { return urb.input && urb.status == 0; });
}

size_t UrbQueue::waitingCount() const
{
    size_t count = 0;
    for (const auto& [address, endpoint] : endpoints_)
        count += endpoint.waiting.size();
    return count;
}

} // namespace sim
