// The bench and its devices as the windows show them.
#pragma once

#include "tools/panel/bench_client.h"
#include "tools/panel/device.h"

#include <memory>
#include <vector>

namespace panel {

class Bench : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool connected READ isConnected NOTIFY connectedChanged)
    Q_PROPERTY(int deviceCount READ deviceCount NOTIFY connectedChanged)
    Q_PROPERTY(QString message READ message NOTIFY messageChanged)
public:
    // `socket` is the path of the bench's control socket.
    explicit Bench(const QString& socket, QObject* parent = nullptr);

    // Connects. Then either ready() or lost() is emitted.
    void start() { client_.start(); }

    [[nodiscard]] bool isConnected() const { return connected_; }
    [[nodiscard]] int deviceCount() const { return static_cast<int>(devices_.size()); }
    // Why the bench refused the latest command; empty if it did not, and some seconds later.
    [[nodiscard]] QString message() const { return message_; }

    [[nodiscard]] const std::vector<std::unique_ptr<Device>>& devices() const { return devices_; }

Q_SIGNALS:
    void ready(); // once, when the devices are known
    void lost(const QString& reason);
    void connectedChanged();
    void messageChanged();

private:
    void takeStart(const QJsonArray& devices);
    void takeEvent(const QJsonObject& event);
    void takeDevices(const QJsonArray& devices);
    void takeLoss(const QString& reason);
    void addDevice(const QJsonObject& state);
    void setMessage(const QString& message);
    [[nodiscard]] Device* find(int number) const; // null if there is none

    BenchClient client_;
    std::vector<std::unique_ptr<Device>> devices_;
    QTimer refresh_;     // runs after an event that may have moved buttons
    QTimer messageTime_; // runs while there is a message
    QString message_;
    bool connected_ = false;
};

} // namespace panel
