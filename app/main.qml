// The main window. It keeps no state of its own: it shows the properties of cls_DeviceManager,
// cls_HidController and cls_LogRecorder and calls their slots.
//
// The three children of id_function_area are anchored although a layout manages them, of which Qt
// warns once each; their sizes come out of both, so keep the two together.
import QtQuick 2.9
import QtQuick.Controls 2.2
import QtQuick.Controls.Styles 1.4
import QtQuick.Layouts 1.1

ApplicationWindow {
    id: applicationWindow
    visible: true
    width: 640
    height: 480
    title: qsTr("Kelprobe")

    component CommandButton: Button {
        id: button
        Layout.fillWidth: true
        onDoubleClicked: clicked() // Qt's button leaves out every second one of fast clicks
        background: Rectangle {
            implicitWidth: 100
            implicitHeight: 40
            color: button.pressed ? "#d6d6d6" : "#f6f6f6"
            border.color: "#26282a"
            border.width: 1
            radius: 4
        }
    }

    Text {
        id: id_banner
        anchors.top: parent.top
        anchors.topMargin: 20
        anchors.horizontalCenter: parent.horizontalCenter
        text: qsTr("Kelprobe - telephony controls of USB HID audio devices")
    }

    ColumnLayout {
        id: id_function_area
        anchors.top: id_banner.verticalCenter
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.margins: 20

        RowLayout {
            id: id_line2
            anchors.left: parent.left
            anchors.right: parent.right

            Text {
                text: qsTr("Test Device:")
            }

            ComboBox {
                id: id_device
                Layout.fillWidth: true
                Layout.alignment: Qt.AlignHCenter | Qt.AlignVCenter
                textRole: "display"
                model: cls_DeviceManager.deviceListModel
                currentIndex: cls_DeviceManager.deviceSelectedIndex
                onCurrentIndexChanged: cls_DeviceManager.slt_onSelectDevice(currentIndex)
                // As the style's own, but for the text: a device's names are shown as they are,
                // not taken for markup (images would be loaded) nor for a key after each "&".
                delegate: ItemDelegate {
                    width: ListView.view.width
                    highlighted: id_device.highlightedIndex === index
                    font.weight: id_device.currentIndex === index ? Font.DemiBold : Font.Normal
                    contentItem: Label {
                        text: model.display // "display" alone is the button's
                        textFormat: Text.PlainText
                        elide: Text.ElideRight
                        verticalAlignment: Text.AlignVCenter
                    }
                }
            }
        }

        RowLayout {
            id: id_line3
            anchors.left: parent.left
            anchors.right: parent.right
            Layout.fillWidth: true

            CommandButton {
                id: id_mute
                text: cls_HidController.muteState ? qsTr("UnMute") : qsTr("Mute")
                enabled: cls_HidController.meetingStatus
                onClicked: cls_HidController.toggleMuteUnmute()
            }

            CommandButton {
                id: id_pickup
                text: qsTr("Pickup")
                flat: true
                enabled: cls_HidController.ringState
                onClicked: cls_HidController.togglePickup()
            }

            CommandButton {
                id: id_hangup
                text: qsTr("Hangup")
                flat: true
                enabled: cls_HidController.ringState
                onClicked: cls_HidController.toggleHangup()
            }

            CommandButton {
                id: id_incoming
                text: qsTr("Incoming")
                flat: true
                onClicked: cls_HidController.toggleRing()
            }

            CommandButton {
                id: id_clearlog
                text: qsTr("ClearLog")
                flat: true
                onClicked: cls_LogRecorder.toggleClearLog()
            }
        }

        ListView {
            id: id_line4
            anchors.top: id_line3.bottom
            anchors.topMargin: 20
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.bottom: parent.bottom
            implicitHeight: 400
            Layout.fillHeight: true
            clip: true // a line cut at the bottom must not run into the status labels
            model: cls_LogRecorder.logListModel
            delegate: TextEdit {
                width: ListView.view.width
                text: display
                readOnly: true
                selectByMouse: true
                wrapMode: TextEdit.WordWrap
            }
        }
    }

    // A strip 10 pixels high on purpose, as the function area ends 20 above the window's bottom:
    // the labels begin in it and draw beyond it.
    RowLayout {
        anchors.top: id_function_area.bottom
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.leftMargin: 20
        anchors.rightMargin: 20
        anchors.bottomMargin: 10

        Rectangle {
            Layout.fillWidth: true
            Layout.fillHeight: true

            Label {
                id: id_meeting_status
                text: cls_HidController.meetingStatus ? qsTr("Meeting is On") : qsTr("Meeting is Off")
            }
        }

        Rectangle {
            Layout.fillWidth: true
            Layout.fillHeight: true

            Label {
                id: id_mute_status
                text: cls_HidController.muteState ? qsTr("Meeting is Muted") : qsTr("Meeting is Unmuted")
            }

            Image {
                anchors.left: id_mute_status.right
                anchors.verticalCenter: id_mute_status.verticalCenter
                sourceSize.height: 18 // a quarter of the file's: sharp on high-DPI screens too
                source: "qrc:/../mivo/images/video/mutedmic.png"
                visible: cls_HidController.muteState
            }
        }
    }
}
