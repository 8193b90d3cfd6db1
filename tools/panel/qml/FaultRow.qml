// A fault that can be switched on, some with a number: how many times, or a length.
import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import Kelprobe.Panel 1.0

GridLayout {
    id: row

    property string name
    property string label
    property bool takesCount: false
    property bool armed: false
    readonly property bool takesLength: name === "short" // which has no default

    signal flipped(bool wanted, string count)

    function arm() {
        const missing = count.text === "" ? takesLength : !count.acceptableInput
        if (takesCount && missing)
            return count.forceActiveFocus(Qt.OtherFocusReason)
        // The field cannot be used while the fault is on.
        if (count.activeFocus)
            toggle.forceActiveFocus(Qt.TabFocusReason)
        flipped(true, takesCount ? count.text : "")
    }

    // In a narrow row the label is above the field and the switch.
    columns: takesCount && width < Theme.fontSize * 20 ? 2 : 3
    columnSpacing: Theme.gap
    rowSpacing: 2

    Label {
        Layout.fillWidth: true
        Layout.columnSpan: row.columns === 2 ? 2 : 1
        text: row.label
        textFormat: Text.PlainText
        color: Theme.text
        wrapMode: Text.Wrap
        Accessible.ignored: true // the switch has the name
    }
    Field {
        id: count
        objectName: "count-" + row.name
        Layout.preferredWidth: Theme.fontSize * 5
        Layout.fillWidth: row.columns === 2
        visible: row.takesCount
        enabled: !row.armed
        placeholderText: row.takesLength ? qsTr("bytes") : qsTr("times")
        label: qsTr("%1, %2").arg(row.label).arg(placeholderText)
        inputMethodHints: Qt.ImhDigitsOnly
        validator: IntValidator { bottom: row.takesLength ? 0 : 1; top: 999999 }
        horizontalAlignment: TextInput.AlignRight
        onAccepted: row.arm()
    }
    TwoWaySwitch {
        id: toggle
        objectName: "fault-" + row.name
        on: row.armed
        label: qsTr("Fault: %1").arg(row.label)
        onFlipped: wanted ? row.arm() : row.flipped(false, "")
    }
}
