// A button of the device: it is down as long as the mouse button or the space key is.
import QtQuick 2.15
import QtQuick.Controls 2.15
import Kelprobe.Panel 1.0

AbstractButton {
    id: button

    property bool isDown: false // on the device

    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    leftPadding: Theme.gap
    rightPadding: Theme.gap
    topPadding: Theme.gap / 2
    bottomPadding: Theme.gap / 2
    opacity: enabled ? 1 : 0.45
    Accessible.role: Accessible.Button
    Accessible.name: isDown ? qsTr("%1, held down").arg(text) : text
    Accessible.pressed: isDown

    // A key that is held down repeats itself, which is no reason to let go.
    Keys.onPressed: event.accepted = event.isAutoRepeat && event.key === Qt.Key_Space
    Keys.onReleased: event.accepted = event.isAutoRepeat && event.key === Qt.Key_Space

    ToolTip.visible: hovered && label.truncated
    ToolTip.text: text
    ToolTip.delay: 500

    contentItem: Label {
        id: label
        text: button.text
        textFormat: Text.PlainText
        color: button.isDown ? Theme.accentText : Theme.text
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        wrapMode: Text.Wrap
        maximumLineCount: 2
        elide: Text.ElideRight
    }
    background: Item {
        implicitHeight: Theme.fontSize + Theme.gap * 3

        // The lower edge shows how far the button stands out.
        Rectangle {
            anchors.fill: parent
            radius: 5
            color: Theme.edge
        }
        Rectangle {
            anchors.fill: parent
            anchors.topMargin: button.isDown ? 2 : 0
            anchors.bottomMargin: button.isDown ? 0 : 2
            radius: 5
            color: button.isDown ? Theme.accent : button.hovered ? Theme.selection : Theme.surface
            border.color: Theme.edge
        }
        FocusFrame { visible: button.visualFocus }
    }
}
