#include "tools/panel/bench.h"

#include <algorithm>

namespace panel {
namespace {

constexpr std::chrono::milliseconds kRefreshDelay{150};
constexpr std::chrono::seconds kMessageTime{6};
constexpr int kMaxMessage = 300; // characters

int numberOf(const QJsonObject& object, const char* key)
{
    return object[QLatin1String(key)].toInt();
}

} // namespace

Bench::Bench(const QString& socket, QObject* parent)
    : QObject(parent)
    , client_(socket)
{
    connect(&client_, &BenchClient::started, this, &Bench::takeStart);
    connect(&client_, &BenchClient::happened, this, &Bench::takeEvent);
    connect(&client_, &BenchClient::refreshed, this, &Bench::takeDevices);
    connect(&client_, &BenchClient::lost, this, &Bench::takeLoss);
    connect(&client_, &BenchClient::refused, this, [this](const QString& error) {
        setMessage(shortened(oneLine(error), kMaxMessage));
        refresh_.start();
    });
    refresh_.setSingleShot(true);
    refresh_.setInterval(kRefreshDelay);
    connect(&refresh_, &QTimer::timeout, &client_, &BenchClient::refresh);
    messageTime_.setSingleShot(true);
    messageTime_.setInterval(kMessageTime);
    connect(&messageTime_, &QTimer::timeout, this, [this] { setMessage({}); });
}

void Bench::takeStart(const QJsonArray& devices)
{
    for (const auto& value : devices) {
        const QJsonObject state = value.toObject();
        if (Device* const device = find(numberOf(state, "number")))
            device->setState(state);
        else if (!connected_)
            addDevice(state);
    }
    if (connected_) {
        for (const auto& device : devices_)
            device->markMissingEvents();
        return setMessage(QStringLiteral("Too many events at once: some are missing in the log."));
    }
    connected_ = true;
    Q_EMIT connectedChanged();
    Q_EMIT ready();
}

void Bench::takeEvent(const QJsonObject& event)
{
    if (Device* const device = find(numberOf(event, "device")))
        device->apply(event);
    const QString kind = event[QLatin1String("event")].toString();
    const bool changesButtons
        = kind == QLatin1String("input") || kind == QLatin1String("unplugged");
    if (changesButtons && !refresh_.isActive())
        refresh_.start();
}

void Bench::takeDevices(const QJsonArray& devices)
{
    for (const auto& value : devices)
        if (Device* const device = find(numberOf(value.toObject(), "number")))
            device->refresh(value.toObject());
}

void Bench::takeLoss(const QString& reason)
{
    refresh_.stop();
    connected_ = false;
    Q_EMIT connectedChanged();
    Q_EMIT lost(reason);
}

void Bench::addDevice(const QJsonObject& state)
{
    Device* const device = devices_.emplace_back(std::make_unique<Device>(state)).get();
    connect(device, &Device::commanded, this, [this, device](const QString& command) {
        setMessage({});
        client_.command(QStringLiteral("%1: %2").arg(device->number()).arg(command));
    });
}

void Bench::setMessage(const QString& message)
{
    if (message.isEmpty())
        messageTime_.stop();
    else
        messageTime_.start();
    if (message == message_)
        return;
    message_ = message;
    Q_EMIT messageChanged();
}

Device* Bench::find(int number) const
{
    const auto found = std::find_if(devices_.begin(), devices_.end(),
        [&](const auto& device) { return device->number() == number; });
    return found == devices_.end() ? nullptr : found->get();
}

} // namespace panel
