// The window of one device. It shows the properties of a panel::Device and calls its operations;
// its only state is the note at the bottom.
import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import QtQuick.Window 2.15
import Kelprobe.Panel 1.0

ApplicationWindow {
    id: window

    required property QtObject device

    property string note

    visible: true
    width: Math.min(960, Screen.desktopAvailableWidth)
    height: Math.min(640, Screen.desktopAvailableHeight)
    minimumWidth: Math.min(560, Screen.desktopAvailableWidth)
    minimumHeight: Math.min(360, Screen.desktopAvailableHeight)
    // The name is not an argument of arg(): it may contain %1.
    title: device.name + " " + (Bench.deviceCount > 1
        ? qsTr("(%1 of %2) - Kelprobe panel").arg(device.number).arg(Bench.deviceCount)
        : qsTr("- Kelprobe panel"))
    color: Theme.window
    palette: Theme.palette
    font.pixelSize: Theme.fontSize
    onActiveChanged: if (!active) device.releaseAll() // no key is released where it was pressed
    onClosing: device.releaseAll()

    Shortcut {
        sequence: StandardKey.Find
        onActivated: log.focusFilter()
    }
    Shortcut {
        sequence: StandardKey.Save
        onActivated: save.open()
    }
    Shortcut {
        sequences: [StandardKey.Close]
        onActivated: window.close()
    }
    Shortcut {
        sequence: "Ctrl+Q"
        onActivated: Qt.quit()
    }

    // Not a ColumnLayout: it would never settle if its content were narrower than the notice.
    header: Column {
        Item {
            width: parent.width
            implicitHeight: about.implicitHeight + Theme.gap * 3

            DeviceHeader {
                id: about
                anchors.fill: parent
                anchors.margins: Theme.gap * 1.5
                anchors.leftMargin: Theme.gap * 2
                anchors.rightMargin: Theme.gap * 2
                device: window.device
            }
        }
        Notice {
            objectName: "notice"
            width: parent.width
            text: !Bench.connected
                ? qsTr("The bench has ended. The log stays until you close the window.")
                : !window.device.plugged ? qsTr("The device is unplugged.") : ""
        }
        Rectangle {
            width: parent.width
            implicitHeight: 1
            color: Theme.line
        }
    }

    RowLayout {
        anchors.fill: parent
        spacing: 0

        ControlsPane {
            id: controls
            Layout.preferredWidth: Math.max(232, Math.min(320, window.width * 0.36))
            Layout.fillHeight: true
            device: window.device
        }
        Rectangle {
            Layout.fillHeight: true
            implicitWidth: 1
            color: Theme.line
        }
        LogPane {
            id: log
            Layout.fillWidth: true
            Layout.fillHeight: true
            log: window.device.log
            hint: controls.isEmpty ? qsTr("Use the device in a program.")
                : qsTr("Press a button, or use the device in a program.")
            onSaveRequested: save.open()
        }
    }

    footer: Notice {
        objectName: "message"
        text: Bench.message !== "" ? Bench.message : window.note
    }

    Timer {
        id: noteTime
        interval: 6000
        onTriggered: window.note = ""
    }
    SavePopup {
        id: save
        parent: Overlay.overlay
        device: window.device
        onSaved: {
            window.note = qsTr("Saved as %1").arg(path)
            noteTime.restart()
        }
    }
}
