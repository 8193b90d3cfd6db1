// The server's side of the bench's protocol, with one device that does only what a test says.
#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QLocalServer>
#include <QLocalSocket>
#include <QPointer>
#include <QStringList>
#include <QTemporaryDir>

class FakeBench {
public:
    FakeBench();

    [[nodiscard]] QString socket() const { return server_.fullServerName(); }

    // The answer to `devices --json`.
    QJsonArray devices;
    // The answer to the next command that is none of the panel's questions; then it is empty.
    QString nextError;
    // The panel's commands, without its questions.
    QStringList commands;

    // Sends an event of the first device. The text is the part of the JSON object without its time
    // and device.
    void send(const QByteArray& event);
    // Sends what need not be an event.
    void sendLine(const QByteArray& line);
    // Closes the connection with the events, as for a client that reads too slowly.
    void dropEvents();
    // From now on there is no bench.
    void end();

    // Each changes the device and sends what the bench would.
    void setLamp(const char* name, const char* state);
    void setHook(const char* position);
    void setPlugged(bool plugged);

    [[nodiscard]] bool hasEvents() const { return events_; }
    [[nodiscard]] int questions() const { return questions_; } // of `devices --json`

private:
    void answer(QLocalSocket& client, const QString& line);
    void set(const char* key, const QJsonValue& value);

    QTemporaryDir directory_;
    QLocalServer server_;
    QPointer<QLocalSocket> events_;
    int milliseconds_ = 0; // the time of the latest event
    int questions_ = 0;
};

// A speakerphone: hook switch, mute, flash, two long names; lamps; faults.
[[nodiscard]] QJsonObject speakerphone();
