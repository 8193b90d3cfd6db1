#include "hid/CKXHostStackStdHid.h"

#include "base/src/trace.h"
#include "hid/model/ReadPause.h"

#include <array>
#include <cassert>
#include <mutex>
#include <new>

namespace KX {

namespace {

constexpr size_t kReadBufferSize = 64; // a full-speed interrupt packet
constexpr int kReadTimeoutMs = 100;

// The stack whose reader thread this is, or null.
thread_local const CKXHostStackStdHid* readingStack = nullptr;

} // namespace

CKXHostStackStdHid::CKXHostStackStdHid(DescriptorCache& descriptorCache)
    : cache(descriptorCache)
{
}

CKXHostStackStdHid::~CKXHostStackStdHid()
{
    CKXHostStackStdHid::Close();
}

int CKXHostStackStdHid::Open(IHostStackSink* eventSink, uint16_t vendor, uint16_t product)
{
    assert(!device);
    sink = eventSink;
    vendorId = vendor;
    productId = product;
    ranOutOfMemory = false;

    if (!OpenDevice()) {
        TraceThis(this, kTraceError, "cannot open %04x:%04x", vendorId, productId);
        return 0;
    }
    if (!StartReader()) {
        TraceThis(this, kTraceError, "no reader thread for %04x:%04x", vendorId, productId);
        CloseDevice();
        return 0;
    }
    Unmute();
    HangUp();
    TraceThis(this, kTraceInfo, "opened %04x:%04x", vendorId, productId);
    return 1;
}

bool CKXHostStackStdHid::OpenDevice()
{
    try {
        const Root* known = cache.Find(vendorId, productId);
        const Root* tree = known ? OpenKnownDevice(*known) : OpenNewDevice();
        if (tree)
            machine.SetControls(TelephonyControls::FromDescriptor(*tree));
        return tree != nullptr;
    } catch (const std::bad_alloc&) {
        ranOutOfMemory = true;
        CloseDevice();
        return false;
    }
}

// This function and the next one return the tree of the device's report descriptor, or null when
// the device is not open.
const Root* CKXHostStackStdHid::OpenKnownDevice(const Root& tree)
{
    device = hid_open(vendorId, productId, nullptr, DescriptorFetch::Off);
    return device ? &tree : nullptr;
}

// The empty tree is added to the cache first and stays there when the device cannot be opened or
// returns no descriptor. This is deliberate: the next attempt does not request the descriptor again
// and opens the device without controls.
const Root* CKXHostStackStdHid::OpenNewDevice()
{
    Root& tree = cache.Add(vendorId, productId);
    try {
        return OpenAndParse(tree) ? &tree : nullptr;
    } catch (const std::bad_alloc&) {
        cache.Remove(vendorId, productId); // it may hold a part of a tree
        throw;
    }
}

bool CKXHostStackStdHid::OpenAndParse(Root& tree)
{
    device = hid_open(vendorId, productId, nullptr, DescriptorFetch::On);
    if (!device)
        return false;
    Bytes descriptor;
    if (!hid_get_report_descriptor_copy(device.get(), descriptor)) {
        CloseDevice();
        return false;
    }
    tree.Parse(descriptor);
    return true;
}

void CKXHostStackStdHid::CloseDevice()
{
    device.reset();
    hid_exit();
}

void CKXHostStackStdHid::Close()
{
    assert(readingStack != this);
    {
        const std::lock_guard guard(lock);
        stopRequested = true;
        stopSignal.signal();
    }
    readerThread.join();
    CloseDevice();
}

bool CKXHostStackStdHid::StartReader()
{
    {
        const std::lock_guard guard(lock);
        stopRequested = false;
    }
    return readerThread.start(ReaderRoutine, this) != 0;
}

void CKXHostStackStdHid::ReaderRoutine(void* self)
{
    auto* const stack = static_cast<CKXHostStackStdHid*>(self);
    readingStack = stack;
    stack->ReadReports();
}

// Waits for Close(), for at most `milliseconds`. May return earlier. Returns whether to stop.
bool CKXHostStackStdHid::StopRequestedWithin(uint32_t milliseconds)
{
    const std::lock_guard guard(lock);
    if (!stopRequested && milliseconds > 0)
        (void)stopSignal.wait(lock, milliseconds);
    return stopRequested;
}

void CKXHostStackStdHid::ReadReports()
{
    std::array<uint8_t, kReadBufferSize> buffer;
    uint32_t pauseMs = 0;
    while (!StopRequestedWithin(pauseMs)) {
        const int size = device->Read(buffer, kReadTimeoutMs);
        pauseMs = size < 0 ? NextReadPause(pauseMs) : 0;
        if (size > 0)
            machine.HandleReport(std::span(buffer).first(static_cast<size_t>(size)));
    }
}

void CKXHostStackStdHid::Notify(TelephonyStateMachine::Event event)
{
    if (!sink)
        return;
    using Event = TelephonyStateMachine::Event;
    switch (event) {
    case Event::Mute:
        sink->OnDeviceMute();
        break;
    case Event::Unmute:
        sink->OnDeviceUnmute();
        break;
    case Event::OffHook:
        sink->OnDeviceOffHook();
        break;
    case Event::HangUp:
        sink->OnDeviceHangUp();
        break;
    }
}

// A failed write is ignored: the host needs no result, and the states stay as set.
void CKXHostStackStdHid::Send(const Bytes& report)
{
    if (device)
        (void)device->Write(report);
}

} // namespace KX
