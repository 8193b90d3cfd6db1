#include "tools/panel/device.h"

#include "tools/panel/log_recording.h"

#include <QDir>
#include <QFileInfo>

#include <utility>

namespace panel {
namespace {

const QString kPressed = QStringLiteral("pressed");
const QString kArmed = QStringLiteral("armed");
const QString kState = QStringLiteral("state");
const QString kSwitch = QStringLiteral("switch");
const QString kTelephonyPage = QStringLiteral("000b"); // begins its usages

// The controls of calls first: others, such as those of the volume, may come first in the report.
QJsonArray inOrder(const QJsonArray& buttons)
{
    QJsonArray calls;
    QJsonArray others;
    for (const auto& button : buttons) {
        const QString usage = button.toObject()[QLatin1String("usage")].toString();
        (usage.startsWith(kTelephonyPage) ? calls : others).append(button);
    }
    for (const auto& button : others)
        calls.append(button);
    return calls;
}

} // namespace

Device::Device(const QJsonObject& state, QObject* parent)
    : QObject(parent)
    , number_(state[QLatin1String("number")].toInt())
    , buttons_({"name", "label", "usage", "kind"}, {"pressed"})
    , lamps_({"name", "label", "usage", "state"}, {})
    , faults_({"name", "label"}, {"count", "armed"})
    , log_(events_)
{
    setState(state);
}

QString Device::name() const
{
    const QString name = (text("manufacturer") + QLatin1Char(' ') + text("product")).simplified();
    return name.isEmpty() ? QStringLiteral("Device %1").arg(number_) : name;
}

QString Device::details() const
{
    QStringList details{text("vendorId") + QLatin1Char(':') + text("productId")};
    for (const char* const key : {"profile", "serial"})
        if (const QString value = text(key).simplified(); !value.isEmpty())
            details.append(value);
    return details.join(QStringLiteral(" · "));
}

bool Device::isPlugged() const
{
    return state_[QLatin1String("plugged")].toBool();
}

bool Device::isOpen() const
{
    return state_[QLatin1String("open")].toBool();
}

void Device::setState(const QJsonObject& state)
{
    buttons_.setParts(inOrder(state[QLatin1String("buttons")].toArray()));
    lamps_.setParts(state[QLatin1String("lamps")].toArray());
    faults_.setParts(state[QLatin1String("faults")].toArray());
    state_ = state;
    for (const char* const parts : {"buttons", "lamps", "faults"})
        state_.remove(QLatin1String(parts));
    Q_EMIT changed();
}

void Device::refresh(const QJsonObject& state)
{
    for (const auto& value : state[QLatin1String("buttons")].toArray()) {
        const QJsonObject button = value.toObject();
        const QString name = button[QLatin1String("name")].toString();
        if (button[QLatin1String("kind")].toString() != kSwitch)
            buttons_.set(name, kPressed, button[kPressed]);
    }
    for (const auto& value : state[QLatin1String("faults")].toArray()) {
        const QJsonObject fault = value.toObject();
        faults_.set(fault[QLatin1String("name")].toString(), kArmed, fault[kArmed]);
    }
}

void Device::apply(const QJsonObject& event)
{
    const QString kind = event[QLatin1String("event")].toString();
    const QString name = event[QLatin1String("name")].toString();
    if (kind == QLatin1String("lamp"))
        lamps_.set(name, kState, event[kState]);
    else if (kind == QLatin1String("fault"))
        faults_.set(name, kArmed, event[kArmed]);
    else if (kind == QLatin1String("hook"))
        setHook(event[QLatin1String("position")].toString());
    else if (kind == QLatin1String("opened") || kind == QLatin1String("closed"))
        set(QStringLiteral("open"), kind == QLatin1String("opened"));
    else if (kind == QLatin1String("plugged") || kind == QLatin1String("unplugged")) {
        for (const QString& button : std::exchange(held_, {})) // none is down without power
            buttons_.set(button, kPressed, false);
        set(QStringLiteral("plugged"), kind == QLatin1String("plugged"));
    }
    const PartModel& parts = kind == QLatin1String("lamp") ? lamps_ : faults_;
    if (auto entry
        = logEntryFor(event, parts.value(name, QStringLiteral("label")).toString(name))) {
        latest_ = entry->time;
        events_.append(std::move(*entry));
    }
}

void Device::markMissingEvents()
{
    events_.append(missingEvents(latest_));
}

void Device::setPressed(const QString& button, bool pressed)
{
    const bool isSwitch = buttons_.value(button, QStringLiteral("kind")).toString() == kSwitch;
    if (pressed && !isSwitch)
        held_.insert(button);
    else if (!pressed && !isSwitch && !held_.remove(button))
        return; // it was let go already
    // The position of a switch comes back with an event; that of a button takes longer.
    if (!isSwitch)
        buttons_.set(button, kPressed, pressed);
    Q_EMIT commanded(pressed ? QStringLiteral("press %1 --hold").arg(button)
                             : QStringLiteral("release ") + button);
}

void Device::releaseAll()
{
    const QSet<QString> held = held_;
    for (const QString& button : held)
        setPressed(button, false);
}

void Device::setPlugged(bool plugged)
{
    Q_EMIT commanded(plugged ? QStringLiteral("replug") : QStringLiteral("unplug"));
}

void Device::setFault(const QString& fault, bool armed, const QString& count)
{
    const QString word = armed ? count : QStringLiteral("off");
    Q_EMIT commanded(QStringLiteral("fault %1 %2").arg(fault, word).trimmed());
}

void Device::sendReport(const QString& bytes)
{
    Q_EMIT commanded(QStringLiteral("raw ") + bytes.simplified());
}

void Device::flood(const QString& count)
{
    Q_EMIT commanded(QStringLiteral("fault flood ") + count);
}

QString Device::proposedFile() const
{
    QString name = text("profile");
    // The profile can be the path of a file.
    name = QFileInfo(name).completeBaseName();
    if (name.isEmpty())
        name = QStringLiteral("device");
    const QDir directory = QDir::current();
    QString path = directory.filePath(name + QStringLiteral(".hid"));
    for (int i = 2; QFileInfo::exists(path); ++i)
        path = directory.filePath(QStringLiteral("%1-%2.hid").arg(name).arg(i));
    return path;
}

QString Device::fullPath(const QString& path) const
{
    if (path.startsWith(QLatin1String("~/")))
        return QDir::homePath() + path.mid(1);
    return path.isEmpty() ? path : QFileInfo(path).absoluteFilePath();
}

bool Device::fileExists(const QString& path) const
{
    return QFileInfo::exists(path);
}

QString Device::saveRecording(const QString& path)
{
    events_.flush();
    return panel::saveRecording(path, state_, events_.entries());
}

void Device::set(const QString& key, const QJsonValue& value)
{
    state_[key] = value;
    Q_EMIT changed();
}

void Device::setHook(const QString& position)
{
    for (const QJsonObject& button : std::vector(buttons_.parts()))
        if (button[QLatin1String("kind")].toString() == kSwitch)
            buttons_.set(button[QLatin1String("name")].toString(), kPressed,
                position == QLatin1String("off"));
}

QString Device::text(const char* key) const
{
    constexpr int kMaxText = 200; // more than a device string can have
    return shortened(oneLine(state_[QLatin1String(key)].toString()), kMaxText);
}

} // namespace panel
