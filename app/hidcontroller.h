// The simulated meeting: its state, the device that shows it, and the log of its transitions.
//
// Every change goes the same way, whether a button of the window or of the device asked for it: to
// the device, to the properties, and as one line to the log list. The operations differ in the
// order of the three on purpose; the order of reports and lines can be relied on.
#pragma once

#include "host/IKXHost.h"

#include <QMetaType>
#include <QObject>
#include <QString>

#include <atomic>

Q_DECLARE_METATYPE(KXCommand)
Q_DECLARE_METATYPE(KXState)

// Belongs to the GUI thread, except for the two callback operations, which the host calls on a
// thread of its own: they only emit, and queued connections carry the event over.
class HidController : public QObject, public IKXHostCallback {
    Q_OBJECT
    Q_PROPERTY(bool muteState READ muteState WRITE setMuteState NOTIFY sig_muteStateChanged)
    Q_PROPERTY(bool meetingStatus READ meetingStatus WRITE setMeetingStatus NOTIFY
            sig_meetingStatusChanged)
    Q_PROPERTY(bool ringState READ ringState WRITE setRingState NOTIFY sig_ringStateChanged)

public:
    HidController();

    // Leaves the device on-hook and closes it; blocks as selectDevice() does.
    ~HidController() override;

    // The process-wide controller; created by the first call, destroyed at exit.
    static HidController& instance();

    bool muteState() const { return m_muteState; }         // the meeting is muted
    bool meetingStatus() const { return m_meetingStatus; } // a meeting is on
    bool ringState() const { return m_ringState; }         // an incoming meeting is ringing

    // The setters tell the window, not the device.
    void setMuteState(bool muted);
    void setMeetingStatus(bool on);
    void setRingState(bool ringing);

    // Leaves the current device on-hook, closes it and opens that of `id`, "0xVVVV-HID-0xPPPP#";
    // the meeting goes on with it. The id already selected is ignored. Whether the device opened
    // is not known here. Blocks for up to a read time-out (100 ms) while a device is closed.
    void selectDevice(const QString& id);

    // Called by the host on its own thread; ignored without a host.
    void OnCommand(KXCommand command, void* reserved) override;
    void OnState(KXState state, const uint8_t* value) override;

    virtual void reserved(); // does nothing; keeps the place of the operations behind it

    // Makes a host for the current device id. False when there is none to be had.
    virtual bool createHost();

    // Brings a new host up to the meeting's state.
    virtual void syncStateToDevice();

public Q_SLOTS:
    void toggleMuteUnmute();
    void toggleRing();
    void toggleHangup();
    void togglePickup();

Q_SIGNALS:
    void sig_muteStateChanged();
    void sig_meetingStatusChanged();
    void sig_ringStateChanged();
    void sig_OnCommandChanged(KXCommand command);
    void sig_OnStateChanged(KXState state, int value);

private Q_SLOTS:
    void slt_OnCommandChanged(KXCommand command);
    void slt_OnStateChanged(KXState state, int value);

protected:
    // The host module's entry functions, installed at construction.
    decltype(&CreateKXHost) m_createHost = nullptr;
    decltype(&DestroyKXHost) m_destroyHost = nullptr;
    decltype(&IsSameConferenceDevice) m_isSameConferenceDevice = nullptr; // never called here

private:
    void send(KXState state, uint8_t value);
    void sendMute(bool muted);
    void sendCall(KXCallState state);
    void discardQueuedEvents();
    void acceptFromDevice();
    void rejectFromDevice();
    void setFlag(bool& flag, bool value, void (HidController::*changed)());
    void log(const char* text) const;

    std::atomic<IKXHost*> m_host = nullptr; // read by the callbacks
    int m_pendingDiscards = 0;              // while above 0, events are those of a previous host
    QString m_deviceId;
    bool m_muteState = false;
    bool m_meetingStatus = false;
    bool m_ringState = false;
};
