// What can be pressed, seen and broken on the device.
import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import QtQuick.Window 2.15
import Kelprobe.Panel 1.0

Flickable {
    id: pane

    property QtObject device
    readonly property bool usable: Bench.connected && device.plugged

    contentHeight: content.height + Theme.gap * 3
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    ScrollBar.vertical: ScrollBar { policy: ScrollBar.AsNeeded }

    // Scrolls so that a control with the keyboard's focus is visible.
    readonly property Item focusItem: Window.activeFocusItem
    onFocusItemChanged: {
        for (let item = focusItem; item; item = item.parent) {
            if (item !== content)
                continue
            const top = focusItem.mapToItem(contentItem, 0, 0).y
            const room = Theme.gap
            if (top - room < contentY)
                contentY = Math.max(0, top - room)
            else if (top + focusItem.height + room > contentY + height)
                contentY = top + focusItem.height + room - height
        }
    }

    ColumnLayout {
        id: content
        x: Theme.gap * 2
        y: Theme.gap * 1.5
        width: pane.width - Theme.gap * 4
        spacing: Theme.gap

        SectionTitle {
            text: qsTr("Lamps")
            visible: lamps.count > 0
        }
        ColumnLayout {
            Layout.fillWidth: true
            spacing: 0
            opacity: pane.usable ? 1 : 0.45

            Repeater {
                id: lamps
                model: pane.device.lamps
                delegate: Lamp {
                    objectName: "lamp-" + model.name
                    Layout.fillWidth: true
                    label: model.label
                    lampState: model.state
                }
            }
        }

        SectionTitle {
            Layout.topMargin: Theme.gap
            text: qsTr("Buttons")
            visible: switches.count + buttons.count > 0
        }
        Repeater {
            id: switches
            model: pane.device.buttons
            delegate: RowLayout {
                visible: model.kind === "switch"
                spacing: Theme.gap

                Label {
                    Layout.fillWidth: true
                    text: model.label
                    textFormat: Text.PlainText
                    color: Theme.text
                    elide: Text.ElideRight
                    Accessible.ignored: true // the switch has the name
                }
                TwoWaySwitch {
                    objectName: "button-" + model.name
                    enabled: pane.usable
                    label: model.label
                    on: model.pressed
                    onText: qsTr("off-hook")
                    offText: qsTr("on-hook")
                    onFlipped: pane.device.setPressed(model.name, wanted)
                }
            }
        }
        GridLayout {
            Layout.fillWidth: true
            columns: 2
            columnSpacing: Theme.gap
            rowSpacing: Theme.gap

            Repeater {
                id: buttons
                model: pane.device.buttons
                delegate: DeviceButton {
                    objectName: "button-" + model.name
                    Layout.fillWidth: true
                    Layout.fillHeight: true
                    Layout.preferredWidth: 1 // all the same
                    visible: model.kind !== "switch"
                    enabled: pane.usable
                    text: model.label
                    isDown: model.pressed || pressed
                    onPressedChanged: pane.device.setPressed(model.name, pressed)
                }
            }
        }

        SectionTitle {
            Layout.topMargin: Theme.gap
            text: qsTr("Faults")
            visible: faults.count > 0
        }
        Repeater {
            id: faults
            model: pane.device.faults
            delegate: FaultRow {
                Layout.fillWidth: true
                enabled: Bench.connected
                name: model.name
                label: model.label
                takesCount: model.count
                armed: model.armed
                onFlipped: pane.device.setFault(model.name, wanted, count)
            }
        }
    }
}
