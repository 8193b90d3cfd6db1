#include "tools/panel/bench_connection.h"

#include <QJsonDocument>
#include <QSignalBlocker>

namespace panel {
namespace {

QString reasonOf(QLocalSocket::LocalSocketError error)
{
    switch (error) {
    case QLocalSocket::ServerNotFoundError:
        return QStringLiteral("there is no such socket");
    case QLocalSocket::ConnectionRefusedError:
        return QStringLiteral("no program listens there");
    case QLocalSocket::SocketAccessError:
        return QStringLiteral("permission denied");
    case QLocalSocket::PeerClosedError:
        return QStringLiteral("it has ended");
    default:
        return QStringLiteral("the connection failed");
    }
}

} // namespace

BenchConnection::BenchConnection(QObject* parent)
    : QObject(parent)
{
    connect(&socket_, &QLocalSocket::readyRead, this, &BenchConnection::read);
    connect(&socket_, &QLocalSocket::connected, this,
        [this] { socket_.write(std::exchange(waiting_, {})); });
    // Later, because a socket cannot be opened again while it emits the signal.
    connect(&socket_, &QLocalSocket::errorOccurred, this, [this] {
        QMetaObject::invokeMethod(this, &BenchConnection::takeEnd, Qt::QueuedConnection);
    });
}

void BenchConnection::open(const QString& socket)
{
    close();
    waiting_.clear();
    socket_.connectToServer(socket);
}

void BenchConnection::send(const QString& line)
{
    const QByteArray bytes = line.toUtf8() + '\n';
    if (socket_.state() == QLocalSocket::ConnectedState)
        socket_.write(bytes);
    else
        waiting_ += bytes;
}

void BenchConnection::close()
{
    const QSignalBlocker blocker(socket_);
    socket_.abort();
}

void BenchConnection::read()
{
    QString fault;
    while (fault.isEmpty() && socket_.canReadLine()) {
        const QJsonDocument line = QJsonDocument::fromJson(socket_.readLine());
        if (line.isObject())
            Q_EMIT received(line.object());
        else
            fault = QStringLiteral("it sent a line that is not a JSON object");
    }
    if (socket_.bytesAvailable() > kMaxLine)
        fault = QStringLiteral("it sent a line of more than 4 MiB");
    if (fault.isEmpty())
        return;
    close();
    Q_EMIT misunderstood(fault);
}

void BenchConnection::takeEnd()
{
    const QString reason = reasonOf(socket_.error());
    close();
    Q_EMIT closed(reason);
}

} // namespace panel
