// The client's side of the bench's protocol.
#pragma once

#include "tools/panel/bench_connection.h"

#include <QJsonArray>
#include <QQueue>
#include <QTimer>

namespace panel {

// There are two connections, because a command ends the events on its own.
class BenchClient : public QObject {
    Q_OBJECT
public:
    static constexpr std::chrono::seconds kMaxSilence{10}; // until the devices are known

    explicit BenchClient(const QString& socket, QObject* parent = nullptr);

    // Connects. Call it once.
    void start();

    // A line with a command. Commands are executed in order.
    void command(const QString& line);

    // Asks for the devices. While the answer is awaited, asks no second time.
    void refresh();

Q_SIGNALS:
    // The devices at first, and again if events were lost because the client read too slowly.
    void started(const QJsonArray& devices);
    void happened(const QJsonObject& event);
    void refreshed(const QJsonArray& devices);
    void refused(const QString& error); // of a command
    // The bench is gone, or is not one. Nothing follows.
    void lost(const QString& reason);

private:
    void takeEvent(const QJsonObject& object);
    void takeAnswer(const QJsonObject& object);
    void reopenEvents(const QString& reason);
    void end(const QString& reason);

    const QString socket_;
    BenchConnection events_;
    BenchConnection commands_;
    QTimer silence_;
    bool streaming_ = false;  // the devices are known and events follow
    bool refreshing_ = false; // the devices were asked for
    bool ended_ = false;
};

} // namespace panel
