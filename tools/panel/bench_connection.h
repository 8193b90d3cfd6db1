// A connection to the control socket of the bench.
#pragma once

#include <QJsonObject>
#include <QLocalSocket>

namespace panel {

// Sends lines and receives JSON objects, one on each line.
class BenchConnection : public QObject {
    Q_OBJECT
public:
    // Longer lines end the connection.
    static constexpr qint64 kMaxLine = qint64{4} * 1024 * 1024;

    explicit BenchConnection(QObject* parent = nullptr);

    // At any time, also after the connection was closed. Never blocks.
    void open(const QString& socket);
    // Adds the line end. Lines are kept until the connection is there, and dropped without one.
    void send(const QString& line);
    void close();

Q_SIGNALS:
    void received(const QJsonObject& object);
    // The connection cannot be made or has ended, but not with close(). The reason is one line.
    void closed(const QString& reason);
    // The same, because the bench sent something that is not of its protocol.
    void misunderstood(const QString& reason);

private:
    void read();
    void takeEnd();
    QLocalSocket socket_;
    QByteArray waiting_; // lines for a connection that is being made
};

} // namespace panel
