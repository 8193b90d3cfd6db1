// The main window. It shows the properties of cls_DeviceManager, cls_HidController and
// cls_LogRecorder and calls their slots. Its only state is whether the log view follows its end.
//
// The three children of id_function_area have anchors although a layout manages them. Qt prints one
// warning for each. Keep both: position and width come from the anchors, the height from the
// layout.
import QtQuick 2.9
import QtQuick.Controls 2.2
import QtQuick.Controls.Styles 1.4
import QtQuick.Layouts 1.1

ApplicationWindow {
    id: applicationWindow
    visible: true
    width: 640
    height: 480
    minimumWidth: id_line3.implicitWidth + 40 // all buttons with their whole texts
    minimumHeight: 240 // some lines of the log
    title: qsTr("Kelprobe")

    component CommandButton: Button {
        id: button
        Layout.fillWidth: true
        onDoubleClicked: clicked() // Qt does not emit it for the second of two fast clicks
        contentItem: Label {
            text: button.text
            horizontalAlignment: Text.AlignHCenter
            verticalAlignment: Text.AlignVCenter
            elide: Text.ElideRight
        }
        background: Rectangle {
            implicitWidth: 100
            implicitHeight: 40
            color: button.pressed ? "#d6d6d6" : "#f6f6f6"
            border.color: "#26282a"
            border.width: 1
            radius: 4

            // Shows the keyboard focus, in the same colour as in the combo box.
            Rectangle {
                anchors.fill: parent
                anchors.margins: 1
                color: "transparent"
                border.color: button.palette.highlight
                border.width: 2
                radius: 3
                visible: button.visualFocus
            }
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
                displayText: oneLine(currentText)
                implicitWidth: 140 // fixed, because after a change Qt repeats its three warnings
                contentItem: Label {
                    leftPadding: 12
                    text: id_device.displayText
                    textFormat: Text.PlainText
                    elide: Text.ElideRight
                    verticalAlignment: Text.AlignVCenter
                }

                // Names come from the device and may contain control characters.
                function oneLine(text) {
                    return text.replace(/[\u0000-\u001f\u007f-\u009f\u2028\u2029]+/g, " ")
                }

                // As the style's delegate, but long names wrap, and names are plain text: markup
                // could load images, and "&" would mark a mnemonic.
                delegate: ItemDelegate {
                    width: ListView.view.width
                    highlighted: id_device.highlightedIndex === index
                    font.weight: id_device.currentIndex === index ? Font.DemiBold : Font.Normal
                    contentItem: Label {
                        text: id_device.oneLine(model.display) // ItemDelegate has its own "display"
                        textFormat: Text.PlainText
                        wrapMode: Text.Wrap
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
            clip: true // a line that does not fit must not cover the status labels
            model: cls_LogRecorder.logListModel
            keyNavigationEnabled: false // there is no current line

            // Whether the view scrolls to new lines. False while the user has scrolled up.
            property bool following: true
            function showEnd() {
                if (following)
                    positionViewAtEnd()
            }
            onMovementStarted: following = false
            onMovementEnded: following = atYEnd
            onCountChanged: if (count === 0) following = true
            onWidthChanged: Qt.callLater(showEnd)
            onHeightChanged: Qt.callLater(showEnd)

            // Not onCountChanged, which is emitted a frame later.
            Connections {
                target: cls_LogRecorder.logListModel
                function onRowsInserted() { Qt.callLater(id_line4.showEnd) }
            }

            ScrollBar.vertical: ScrollBar {
                id: id_scroll_bar
                policy: size < 1 ? ScrollBar.AlwaysOn : ScrollBar.AlwaysOff
                onPressedChanged: id_line4.following = !pressed && id_line4.atYEnd
            }

            delegate: TextEdit {
                width: ListView.view.width - id_scroll_bar.width
                text: display
                readOnly: true
                selectByMouse: true
                wrapMode: TextEdit.WordWrap
            }
        }
    }

    // Deliberately only 10 pixels high: the function area ends 20 pixels above the window's bottom.
    // The labels draw beyond it.
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
                font.bold: true
                text: cls_HidController.meetingStatus ? qsTr("Meeting is On") : qsTr("Meeting is Off")
            }
        }

        Rectangle {
            Layout.fillWidth: true
            Layout.fillHeight: true

            Label {
                id: id_mute_status
                font.bold: true
                text: cls_HidController.muteState ? qsTr("Meeting is Muted") : qsTr("Meeting is Unmuted")
            }

            Image {
                anchors.left: id_mute_status.right
                anchors.verticalCenter: id_mute_status.verticalCenter
                sourceSize.height: 18 // a quarter of the file's height, for high-DPI screens
                source: "qrc:/../mivo/images/video/mutedmic.png"
                visible: cls_HidController.muteState
            }
        }
    }

    // Separates the log from the status labels.
    Rectangle {
        anchors.top: id_function_area.bottom
        anchors.left: id_function_area.left
        anchors.right: id_function_area.right
        height: 1
        color: "#26282a"
    }
}
