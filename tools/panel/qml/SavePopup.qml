// Asks where the reports of the log are to be saved.
import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import Kelprobe.Panel 1.0

Popup {
    id: popup

    property QtObject device

    signal saved(string path)

    property string problem

    function save() {
        const file = device.fullPath(path.text)
        problem = device.saveRecording(file)
        if (problem !== "")
            return
        close()
        saved(file)
    }

    modal: true
    focus: true
    anchors.centerIn: Overlay.overlay
    width: Math.min(parent.width - Theme.gap * 4, 520)
    padding: Theme.gap * 2
    onAboutToShow: {
        problem = ""
        path.text = device.proposedFile()
    }
    onOpened: {
        path.forceActiveFocus(Qt.PopupFocusReason)
        path.cursorPosition = path.text.length
    }

    background: Rectangle {
        color: Theme.window
        border.color: Theme.edge
        radius: 8
    }
    Overlay.modal: Rectangle { color: Qt.rgba(0, 0, 0, 0.4) }

    contentItem: ColumnLayout {
        spacing: Theme.gap

        Label {
            text: qsTr("Save as a recording")
            color: Theme.text
            font.weight: Font.DemiBold
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
        Field {
            id: path
            objectName: "path"
            Layout.fillWidth: true
            label: qsTr("File")
            font.family: Theme.mono
            onAccepted: popup.save()
            onTextChanged: popup.problem = ""
        }
        Label {
            objectName: "hint"
            Layout.fillWidth: true
            text: popup.problem !== "" ? popup.problem
                : popup.visible && popup.device.fileExists(popup.device.fullPath(path.text))
                    ? qsTr("There is such a file. Saving replaces it.")
                    : qsTr("All reports of the log, in the format of hid-recorder.")
            textFormat: Text.PlainText
            color: popup.problem !== "" ? Theme.text : Theme.muted
            font.weight: popup.problem !== "" ? Font.DemiBold : Font.Normal
            font.pixelSize: Theme.smallSize
            wrapMode: Text.Wrap
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
        RowLayout {
            Layout.alignment: Qt.AlignRight
            spacing: Theme.gap

            ActionButton {
                objectName: "cancel"
                text: qsTr("Cancel")
                onClicked: popup.close()
            }
            ActionButton {
                objectName: "confirm"
                text: qsTr("Save")
                strong: true
                enabled: path.text !== ""
                onClicked: popup.save()
            }
        }
    }
}
