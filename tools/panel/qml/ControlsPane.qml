// What can be pressed, seen, broken and sent on the device.
import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import QtQuick.Window 2.15
import Kelprobe.Panel 1.0

Flickable {
    id: pane

    property QtObject device
    readonly property bool usable: Bench.connected && device.plugged
    readonly property bool isEmpty: lamps.count + buttons.count === 0

    // To find the control in a list of commands or in a report descriptor.
    function describe(name, usage) {
        return qsTr("%1, usage %2").arg(name).arg(usage)
    }

    contentHeight: content.height + Theme.gap * 3
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    ScrollBar.vertical: PaneScrollBar { objectName: "controlsBar" }

    // Scrolls so that a control with the keyboard's focus is visible.
    readonly property Item focusItem: Window.activeFocusItem
    onFocusItemChanged: showFocus()
    onHeightChanged: showFocus()
    function showFocus() {
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

        Label {
            Layout.fillWidth: true
            visible: pane.isEmpty
            text: qsTr("This device has no buttons or lamps.")
            textFormat: Text.PlainText
            color: Theme.muted
            wrapMode: Text.Wrap
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
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
                    description: pane.describe(model.name, model.usage)
                }
            }
        }

        SectionTitle {
            Layout.topMargin: Theme.gap
            text: qsTr("Buttons")
            visible: buttons.count > 0
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
                    opacity: pane.usable ? 1 : 0.45
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
                    Accessible.description: pane.describe(model.name, model.usage)
                    ToolTip.visible: hovered
                    ToolTip.text: Accessible.description
                    ToolTip.delay: 500
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
                    description: pane.describe(model.name, model.usage)
                    isDown: model.pressed || held
                    onHeldChanged: pane.device.setPressed(model.name, held)
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

        SectionTitle {
            Layout.topMargin: Theme.gap
            text: qsTr("Send")
        }
        SendRows {
            Layout.fillWidth: true
            enabled: pane.usable
            onReportSent: pane.device.sendReport(bytes)
            onFlooded: pane.device.flood(count)
        }
    }
}
