#include "tools/ctl/meeting/session.h"

#include "app/logrecorder.h"
#include "tools/ctl/cli/failure.h"
#include "tools/ctl/traffic/failure_words.h"
#include "tools/ctl/usb/device_words.h"

#include <utility>

namespace ctl {
namespace {

QString keyOf(const DeviceEntry& device)
{
    return QString::asprintf("0x%04x-HID-0x%04x#", device.vendorId, device.productId);
}

std::string openFailure(const Journal& journal, const DeviceEntry& device)
{
    if (const int error = journal.openError())
        return std::string(usbFailure(error).text) + "; run kelprobectl doctor";
    return device.descriptor.empty() ? "it returns no report descriptor; plug it in again"
                                     : "it has gone or does not respond; plug it in again";
}

} // namespace

void requireUsable(const DeviceEntry& device)
{
    if (!device.firstOfItsIds)
        throw Failure(kNoAccess,
            idsText(device) + " is there more than once and Kelprobe opens only the first; unplug "
                + "the others or choose the first");
    if (device.access != Access::kOpen && device.access != Access::kNotTried)
        throw Failure(kNoAccess, idsText(device) + " cannot be opened: " + device.accessText);
}

Session::Session(Journal& journal, const DeviceEntry& device)
    : Session(journal, HostFunctions(), keyOf(device))
{
    if (!journal.isOpen())
        throw Failure(
            kNoAccess, idsText(device) + " cannot be opened: " + openFailure(journal, device));
}

Session::Session(Journal& journal, HostFunctions functions, const QString& id)
    : tap_(journal, std::move(functions))
    , controller_(tap_.makeController())
{
    const QStringListModel* const log = LogRecorder::instance().logListModel();
    const auto addLine = [&journal, log](const QModelIndex& row) {
        journal.add({.kind = Entry::Kind::kLog, .text = log->data(row).toString().toStdString()});
    };
    QObject::connect(log, &QStringListModel::dataChanged, &context_, addLine, Qt::DirectConnection);
    controller_->selectDevice(id);
}

// The stack does not unmute when it goes on-hook. A Mute LED in a report of its own would stay lit.
Session::~Session()
{
    IKXHost* const host = tap_.host();
    uint8_t muted = 0;
    if (!host || !host->GetState(KXState::Mute, &muted) || !muted)
        return;
    uint8_t call = KXCallUnknown;
    if (host->GetState(KXState::Call, &call) && call != KXCallActive) {
        const uint8_t active = KXCallActive; // the stack unmutes only in a call
        host->SetState(KXState::Call, &active);
    }
    const uint8_t unmuted = 0;
    host->SetState(KXState::Mute, &unmuted);
}

} // namespace ctl
