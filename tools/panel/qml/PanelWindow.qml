// The window of one device. It shows the properties of a panel::Device and calls its operations;
// its only state is the note at the bottom.
import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import Kelprobe.Panel 1.0

ApplicationWindow {
    id: window

    required property QtObject device

    property string note

    visible: true
    width: 960
    height: 640
    minimumWidth: 560
    minimumHeight: 360
    title: qsTr("%1 - Kelprobe panel").arg(device.name)
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
        sequences: [StandardKey.Quit, "Ctrl+Q"]
        onActivated: Qt.quit()
    }

    header: ColumnLayout {
        spacing: 0

        DeviceHeader {
            Layout.fillWidth: true
            Layout.margins: Theme.gap * 1.5
            Layout.leftMargin: Theme.gap * 2
            Layout.rightMargin: Theme.gap * 2
            device: window.device
        }
        Notice {
            objectName: "notice"
            Layout.fillWidth: true
            text: !Bench.connected
                ? qsTr("The bench has ended. The log stays until you close the window.")
                : !window.device.plugged ? qsTr("The device is unplugged.") : ""
        }
        Rectangle {
            Layout.fillWidth: true
            implicitHeight: 1
            color: Theme.line
        }
    }

    RowLayout {
        anchors.fill: parent
        spacing: 0

        ControlsPane {
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
