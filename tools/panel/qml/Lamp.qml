// A lamp: a ring when it is off, a disc when it is on, a ring around a disc of changing size when it
// blinks, and the state as text.
import QtQuick 2.15
import QtQuick.Controls 2.15
import Kelprobe.Panel 1.0

Item {
    id: lamp

    property string label
    property string lampState // "off", "on" or "blink"
    readonly property bool blinks: lampState === "blink"
    readonly property string stateText: blinks ? qsTr("blinking") : lampState

    implicitHeight: Theme.fontSize + Theme.gap
    Accessible.role: Accessible.Indicator
    Accessible.name: qsTr("%1 lamp: %2").arg(label).arg(stateText)

    Rectangle {
        id: ring
        anchors.verticalCenter: parent.verticalCenter
        width: 16
        height: 16
        radius: 8
        color: lamp.lampState === "on" ? Theme.accent : Theme.surface
        border.color: lamp.lampState === "off" ? Theme.edge : Theme.accent
        border.width: 2

        Rectangle {
            anchors.centerIn: parent
            width: phase.bright ? 8 : 4
            height: width
            radius: width / 2
            color: Theme.accent
            visible: lamp.blinks
        }
    }
    Timer {
        id: phase
        property bool bright: true
        interval: 500
        repeat: true
        running: lamp.blinks
        onTriggered: bright = !bright
        onRunningChanged: bright = true
    }
    Label {
        anchors.left: ring.right
        anchors.leftMargin: Theme.gap
        anchors.right: state.left
        anchors.rightMargin: Theme.gap
        anchors.verticalCenter: parent.verticalCenter
        text: lamp.label
        textFormat: Text.PlainText
        color: Theme.text
        elide: Text.ElideRight
    }
    Label {
        id: state
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        text: lamp.stateText
        textFormat: Text.PlainText
        color: lamp.lampState === "off" ? Theme.muted : Theme.text
        font.weight: lamp.lampState === "off" ? Font.Normal : Font.DemiBold
    }
}
