// A lamp: an empty ring when it is off, a ring around a disc when it is on, a ring around a smaller
// disc of changing size when it blinks, and the state as text.
import QtQuick 2.15
import QtQuick.Controls 2.15
import Kelprobe.Panel 1.0

Rectangle {
    id: lamp

    property string label
    property string description // its name and usage, as another lamp can have the same label
    property string lampState // "off", "on" or "blink"
    readonly property bool blinks: lampState === "blink"
    readonly property string stateText: blinks ? qsTr("blinking") : lampState

    readonly property bool lit: lampState !== "off"

    implicitHeight: Math.max(24, Theme.fontSize + Theme.gap)
    radius: 12
    color: lit ? Theme.lampGlow : "transparent"
    Accessible.role: Accessible.Indicator
    Accessible.description: description
    Accessible.name: qsTr("%1 lamp: %2").arg(label).arg(stateText)

    HoverHandler { id: mouse }
    ToolTip.visible: mouse.hovered
    ToolTip.text: description
    ToolTip.delay: 500

    Rectangle {
        id: ring
        x: 2
        anchors.verticalCenter: parent.verticalCenter
        width: 20
        height: 20
        radius: 10
        color: Theme.surface
        border.color: lamp.lit ? Theme.lamp : Theme.edge
        border.width: 2

        Rectangle {
            anchors.centerIn: parent
            width: !lamp.blinks ? 12 : phase.bright ? 8 : 4
            height: width
            radius: width / 2
            color: Theme.lamp
            visible: lamp.lit
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
        anchors.rightMargin: Theme.gap
        anchors.verticalCenter: parent.verticalCenter
        text: lamp.stateText
        textFormat: Text.PlainText
        color: lamp.lit ? Theme.text : Theme.muted
        font.weight: lamp.lit ? Font.DemiBold : Font.Normal
    }
}
