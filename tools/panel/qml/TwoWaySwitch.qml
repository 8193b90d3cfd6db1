// A switch with a text for each position, left of it. A click does not change `on`; it emits
// flipped().
import QtQuick 2.15
import QtQuick.Controls 2.15
import Kelprobe.Panel 1.0

AbstractButton {
    id: control

    property bool on: false
    property string onText: qsTr("on")
    property string offText: qsTr("off")
    property string label: text // its name for screen readers
    readonly property string stateText: on ? onText : offText

    signal flipped(bool wanted)

    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    opacity: enabled ? 1 : 0.45
    onClicked: flipped(!on)
    Accessible.role: Accessible.CheckBox
    Accessible.name: label + ": " + stateText
    Accessible.checkable: true
    Accessible.checked: on

    contentItem: Item {
        implicitWidth: track.width + Theme.gap + Math.ceil(widest.advanceWidth)
        implicitHeight: Math.max(track.height, state.implicitHeight)

        Rectangle {
            id: track
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            width: 34
            height: 18
            radius: 9
            color: control.on ? Theme.accent : Theme.surface
            border.color: control.on ? Theme.accent : Theme.edge

            Rectangle {
                x: control.on ? parent.width - width - 3 : 3
                y: 3
                width: 12
                height: 12
                radius: 6
                color: control.on ? Theme.accentText : Theme.edge
            }
            FocusFrame { visible: control.visualFocus; radius: 12 }
        }
        Label {
            id: state
            anchors.right: track.left
            anchors.rightMargin: Theme.gap
            anchors.verticalCenter: parent.verticalCenter
            text: control.stateText
            textFormat: Text.PlainText
            color: Theme.text
            font.weight: control.on ? Font.DemiBold : Font.Normal
        }
        // The width does not depend on the position.
        TextMetrics {
            id: widest
            font.family: state.font.family
            font.pixelSize: state.font.pixelSize
            font.weight: Font.DemiBold
            text: control.onText.length > control.offText.length ? control.onText : control.offText
        }
    }
    background: null
}
