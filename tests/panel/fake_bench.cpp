#include "tests/panel/fake_bench.h"

#include <QJsonDocument>

#include <utility>

namespace {

QJsonObject button(const char* name, const char* label, const char* usage, const char* kind)
{
    return {{"name", name}, {"label", label}, {"usage", usage}, {"kind", kind}, {"pressed", false}};
}

QJsonObject lamp(const char* name, const char* label, const char* usage)
{
    return {{"name", name}, {"label", label}, {"usage", usage}, {"state", "off"}};
}

QJsonObject fault(const char* name, const char* label, bool count)
{
    return {{"name", name}, {"label", label}, {"count", count}, {"armed", false}};
}

QByteArray lineOf(const QJsonObject& object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

} // namespace

QJsonObject speakerphone()
{
    return {{"number", 1}, {"profile", "speakerphone"}, {"vendorId", "1209"}, {"productId", "0001"},
        {"manufacturer", "Kelprobe"}, {"product", "Simulated speakerphone"}, {"serial", "S0001"},
        {"plugged", true}, {"open", false}, {"hook", "on"},
        {"reportDescriptor",
            "050b0905a1010b20000b0085031500250175019501810295078101050809179102950791"
            "01c0"},
        {"buttons",
            QJsonArray{button("hook", "Hook Switch", "000b0020", "switch"),
                button("mute", "Phone Mute", "000b002f", "button"),
                button("flash", "Flash", "000b0021", "button"),
                button("volume-increment", "Volume Increment", "000c00e9", "button"),
                button("volume-decrement", "Volume Decrement", "000c00ea", "button")}},
        {"lamps",
            QJsonArray{lamp("mute", "Mute", "00080009"), lamp("off-hook", "Off-Hook", "00080017"),
                lamp("ring", "Ring", "00080018"), lamp("hold", "Hold", "00080020")}},
        {"faults",
            QJsonArray{fault("claim", "claim is refused", true),
                fault("write", "writes are refused", true),
                fault("open", "opening is not permitted", false),
                fault("short", "the report descriptor is cut off", true)}}};
}

FakeBench::FakeBench()
    : devices{speakerphone()}
{
    QObject::connect(&server_, &QLocalServer::newConnection, [this] {
        QLocalSocket* const client = server_.nextPendingConnection();
        QObject::connect(client, &QLocalSocket::readyRead, [this, client] {
            while (client->canReadLine())
                answer(*client, QString::fromUtf8(client->readLine()).trimmed());
        });
    });
    server_.listen(directory_.filePath(QStringLiteral("control")));
}

void FakeBench::answer(QLocalSocket& client, const QString& line)
{
    QJsonObject state{{"devices", devices}};
    if (line == QLatin1String("events")) {
        events_ = &client;
        state["event"] = "start";
        client.write(lineOf(state));
        return;
    }
    QJsonObject result{{"status", 0}};
    if (line == QLatin1String("devices --json")) {
        ++questions_;
        client.write(lineOf(state));
    } else {
        commands.append(line);
        if (const QString error = std::exchange(nextError, {}); !error.isEmpty())
            result = {{"status", 1}, {"error", error}};
    }
    client.write(lineOf(result));
}

void FakeBench::send(const QByteArray& event)
{
    ++milliseconds_;
    sendLine("{\"time\": " + QByteArray::number(milliseconds_ / 1000.0, 'f', 6)
        + ", \"device\": 1, " + event + "}");
}

void FakeBench::sendLine(const QByteArray& line)
{
    if (events_)
        events_->write(line + '\n');
}

void FakeBench::dropEvents()
{
    delete events_;
}

void FakeBench::end()
{
    server_.close();
    for (QLocalSocket* const client : server_.findChildren<QLocalSocket*>())
        client->abort();
}

void FakeBench::setLamp(const char* name, const char* state)
{
    QJsonArray lamps = devices[0].toObject()["lamps"].toArray();
    for (QJsonValueRef value : lamps) {
        QJsonObject lamp = value.toObject();
        if (lamp["name"].toString() == QLatin1String(name))
            lamp["state"] = state;
        value = lamp;
    }
    set("lamps", lamps);
    send(
        QByteArray("\"event\": \"lamp\", \"name\": \"") + name + "\", \"state\": \"" + state + '"');
}

void FakeBench::setHook(const char* position)
{
    set("hook", position);
    send(QByteArray("\"event\": \"hook\", \"position\": \"") + position + '"');
}

void FakeBench::setPlugged(bool plugged)
{
    set("plugged", plugged);
    send(plugged ? "\"event\": \"plugged\"" : "\"event\": \"unplugged\"");
}

void FakeBench::set(const char* key, const QJsonValue& value)
{
    QJsonObject device = devices[0].toObject();
    device[key] = value;
    devices[0] = device;
}
