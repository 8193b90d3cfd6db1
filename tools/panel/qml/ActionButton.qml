// A button of the program, not of the device. `strong` marks the default one.
import QtQuick 2.15
import QtQuick.Controls 2.15
import Kelprobe.Panel 1.0

AbstractButton {
    id: button

    property bool strong: false
    readonly property bool filled: strong || checked

    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    leftPadding: Theme.gap * 1.25
    rightPadding: Theme.gap * 1.25
    topPadding: 4
    bottomPadding: 4
    opacity: enabled ? 1 : 0.45
    Accessible.name: text
    Accessible.role: Accessible.Button
    Accessible.checkable: checkable
    Accessible.checked: checked

    contentItem: Label {
        text: button.text
        textFormat: Text.PlainText
        color: button.filled ? Theme.accentText : Theme.text
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
    }
    background: Rectangle {
        implicitHeight: Theme.fontSize + Theme.gap * 1.75
        radius: 4
        color: button.filled ? Theme.accent
            : button.down ? Theme.line
            : button.hovered ? Theme.selection : Theme.surface
        border.color: button.filled ? Theme.accent : Theme.edge

        FocusFrame { visible: button.visualFocus }
    }
}
