// The simulated meeting: its state, the device that shows it, and the log of its transitions.
//
// Every transition, whether a button of the window or of the device caused it, is sent to the
// device, stored in the properties and logged as one line. The order of these three differs between
// the operations; it is deliberate and callers may rely on it.
#pragma once

#include "host/IKXHost.h"

#include <QMetaType>
#include <QObject>
#include <QString>

#include <atomic>

Q_DECLARE_METATYPE(KXCommand)
Q_DECLARE_METATYPE(KXState)

// Only the GUI thread may call the operations, except the two callback operations: the host calls
// them on its reader thread. They only emit a signal, which a queued connection delivers on the GUI
// thread.
//
// Every operation that sends to the device blocks until the device has taken each report, for at
// most 1 s per report.
class HidController : public QObject, public IKXHostCallback {
    Q_OBJECT
    Q_PROPERTY(bool muteState READ muteState WRITE setMuteState NOTIFY sig_muteStateChanged)
    Q_PROPERTY(bool meetingStatus READ meetingStatus WRITE setMeetingStatus NOTIFY
            sig_meetingStatusChanged)
    Q_PROPERTY(bool ringState READ ringState WRITE setRingState NOTIFY sig_ringStateChanged)

public:
    HidController();

    // Sends on-hook to the device and closes it. Blocks as selectDevice() does for the old device.
    ~HidController() override;

    // The process-wide controller. Created by the first call, destroyed at exit.
    static HidController& instance();

    bool muteState() const { return m_muteState; }         // the meeting is muted
    bool meetingStatus() const { return m_meetingStatus; } // a meeting is on
    bool ringState() const { return m_ringState; }         // an incoming meeting is ringing

    // These send nothing to the device and log nothing.
    void setMuteState(bool muted);
    void setMeetingStatus(bool on);
    void setRingState(bool ringing);

    // Sends on-hook to the current device, closes it, and opens the device of `id`
    // ("0xVVVV-HID-0xPPPP#"). The meeting continues on the new device; events of the old one that
    // are still queued are dropped. Does nothing if `id` is the current id. Does not report whether
    // the device opened.
    //
    // Blocks while the one device is set on-hook and closed, and as long as IKXHost::SelectDevice()
    // does for the other: about 30 s with a device that does not respond.
    void selectDevice(const QString& id);

    // Called by the host on its reader thread. Ignored while there is no host.
    void OnCommand(KXCommand command, void* reserved) override;
    void OnState(KXState state, const uint8_t* value) override;

    virtual void reserved(); // does nothing; keeps the order of the virtual operations

    // Creates a host and selects the current device id, blocking as selectDevice() does for the new
    // device. Returns false if there is no factory or it creates no host.
    virtual bool createHost();

    // Sends the meeting's state to a new host.
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
    // The host module's entry functions. Set at construction.
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
