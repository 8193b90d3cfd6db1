// A device of the bench as its window shows it.
#pragma once

#include "tools/panel/event_log.h"
#include "tools/panel/log_view.h"
#include "tools/panel/part_model.h"

#include <QSet>

namespace panel {

// Commands for the device are passed on with a signal. What they cause comes back as events.
class Device : public QObject {
    Q_OBJECT
    Q_PROPERTY(int number READ number CONSTANT)
    Q_PROPERTY(QString name READ name NOTIFY changed)
    Q_PROPERTY(QString details READ details NOTIFY changed)
    Q_PROPERTY(bool plugged READ isPlugged NOTIFY changed)
    Q_PROPERTY(bool open READ isOpen NOTIFY changed)
    Q_PROPERTY(QAbstractItemModel* buttons READ buttons CONSTANT)
    Q_PROPERTY(QAbstractItemModel* lamps READ lamps CONSTANT)
    Q_PROPERTY(QAbstractItemModel* faults READ faults CONSTANT)
    Q_PROPERTY(panel::LogView* log READ log CONSTANT)
public:
    // From an object of "devices" of the bench.
    explicit Device(const QJsonObject& state, QObject* parent = nullptr);

    [[nodiscard]] int number() const { return number_; }
    [[nodiscard]] QString name() const;    // manufacturer and product
    [[nodiscard]] QString details() const; // "1209:0001 · speakerphone · S0001"
    [[nodiscard]] bool isPlugged() const;
    [[nodiscard]] bool isOpen() const;
    [[nodiscard]] PartModel* buttons() { return &buttons_; }
    [[nodiscard]] PartModel* lamps() { return &lamps_; }
    [[nodiscard]] PartModel* faults() { return &faults_; }
    [[nodiscard]] EventLog& events() { return events_; }
    [[nodiscard]] LogView* log() { return &log_; }

    // The whole state, as in the constructor.
    void setState(const QJsonObject& state);
    // Which buttons are down, which no event reports, and which faults are on.
    void refresh(const QJsonObject& state);
    // Events of other devices are not passed here.
    void apply(const QJsonObject& event);
    // Marks in the log that events were not received since the latest one.
    void markMissingEvents();

    // Press and hold, or let go. A switch is moved to off-hook or on-hook.
    Q_INVOKABLE void setPressed(const QString& button, bool pressed);
    // Lets go of the buttons that are held down, but leaves switches.
    Q_INVOKABLE void releaseAll();
    Q_INVOKABLE void setPlugged(bool plugged);
    // `count` is a number or empty.
    Q_INVOKABLE void setFault(const QString& fault, bool armed, const QString& count);
    // An input report in hexadecimal, as on the wire; a number of reports at once.
    Q_INVOKABLE void sendReport(const QString& bytes);
    Q_INVOKABLE void flood(const QString& count);

    // Where the recording of the log is proposed to be saved: a file that does not exist.
    Q_INVOKABLE QString proposedFile() const;
    // The absolute path; ~/ at the beginning is the user's directory.
    Q_INVOKABLE QString fullPath(const QString& path) const;
    Q_INVOKABLE bool fileExists(const QString& path) const;
    // Returns an empty text, or what went wrong.
    Q_INVOKABLE QString saveRecording(const QString& path);

Q_SIGNALS:
    void changed();
    void commanded(const QString& command); // without the device's number

private:
    void set(const QString& key, const QJsonValue& value);
    void setHook(const QString& position);
    [[nodiscard]] QString text(const char* key) const; // one line, cut if very long

    const int number_;
    QJsonObject state_; // without the parts
    PartModel buttons_;
    PartModel lamps_;
    PartModel faults_;
    QSet<QString> held_;                 // names of buttons that the window holds down
    std::chrono::microseconds latest_{}; // time of the latest line of the log
    EventLog events_;
    LogView log_;
};

} // namespace panel
