// A button of the device: it is down as long as the mouse button or the space key is.
import QtQuick 2.15
import QtQuick.Controls 2.15
import Kelprobe.Panel 1.0

AbstractButton {
    id: button

    property bool isDown: false // on the device
    property string description // its name and usage, as another button can have the same text

    property bool keyDown: false
    readonly property bool held: pressed || keyDown

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

    Accessible.description: description
    Accessible.onPressAction: {
        keyDown = true
        letGo.restart()
    }

    // A key that is held down repeats itself: it is released and pressed again, which Qt does not
    // mark dependably. Only a release that no press follows lets go.
    Keys.onPressed: {
        if (event.key !== Qt.Key_Space)
            return
        event.accepted = true
        letGo.stop()
        keyDown = true
    }
    Keys.onReleased: {
        if (event.key !== Qt.Key_Space)
            return
        event.accepted = true
        if (!event.isAutoRepeat)
            letGo.restart()
    }
    onActiveFocusChanged: if (!activeFocus) keyDown = false
    Timer {
        id: letGo
        interval: 30
        onTriggered: button.keyDown = false
    }

    ToolTip.visible: hovered && !held
    ToolTip.text: label.truncated ? text + "\n" + description : description
    ToolTip.delay: 1000

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
            visible: button.enabled // would show through the face
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
