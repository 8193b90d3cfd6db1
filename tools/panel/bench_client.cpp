#include "tools/panel/bench_client.h"

#include <QFileInfo>

#include <utility>

namespace panel {
namespace {

QString errorOf(const QJsonObject& answer)
{
    const QString error = answer[QLatin1String("error")].toString();
    return error.isEmpty() ? QStringLiteral("the bench gave no reason") : error;
}

} // namespace

BenchClient::BenchClient(const QString& socket, QObject* parent)
    : QObject(parent)
    , socket_(QFileInfo(socket).absoluteFilePath()) // Qt looks for others in /tmp
{
    connect(&events_, &BenchConnection::received, this, &BenchClient::takeEvent);
    connect(&events_, &BenchConnection::closed, this, &BenchClient::reopenEvents);
    connect(&commands_, &BenchConnection::received, this, &BenchClient::takeAnswer);
    connect(&commands_, &BenchConnection::closed, this, &BenchClient::end);
    for (const BenchConnection* const connection : {&events_, &commands_})
        connect(connection, &BenchConnection::misunderstood, this, &BenchClient::end);
    silence_.setSingleShot(true);
    silence_.setInterval(kMaxSilence);
    connect(
        &silence_, &QTimer::timeout, this, [this] { end(QStringLiteral("it does not answer")); });
}

void BenchClient::start()
{
    commands_.open(socket_);
    events_.open(socket_);
    events_.send(QStringLiteral("events"));
    silence_.start();
}

void BenchClient::command(const QString& line)
{
    if (!ended_)
        commands_.send(line);
}

void BenchClient::refresh()
{
    if (!std::exchange(refreshing_, true))
        command(QStringLiteral("devices --json"));
}

void BenchClient::takeEvent(const QJsonObject& object)
{
    if (ended_)
        return;
    if (object.contains(QLatin1String("status")))
        return end(errorOf(object));
    if (object[QLatin1String("event")].toString() == QLatin1String("start")) {
        streaming_ = true;
        silence_.stop();
        Q_EMIT started(object[QLatin1String("devices")].toArray());
    } else {
        Q_EMIT happened(object);
    }
}

void BenchClient::takeAnswer(const QJsonObject& object)
{
    if (ended_)
        return;
    if (object.contains(QLatin1String("devices"))) {
        refreshing_ = false;
        Q_EMIT refreshed(object[QLatin1String("devices")].toArray());
    } else if (object[QLatin1String("status")].toInt() != 0) {
        Q_EMIT refused(errorOf(object));
    }
}

// The bench drops a client that reads too slowly. If it is gone itself, connecting fails.
void BenchClient::reopenEvents(const QString& reason)
{
    if (!std::exchange(streaming_, false))
        return end(reason);
    events_.open(socket_);
    events_.send(QStringLiteral("events"));
    silence_.start();
}

void BenchClient::end(const QString& reason)
{
    if (std::exchange(ended_, true))
        return;
    silence_.stop();
    events_.close();
    commands_.close();
    Q_EMIT lost(reason);
}

} // namespace panel
