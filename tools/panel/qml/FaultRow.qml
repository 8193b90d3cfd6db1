// A fault that can be switched on, some with a number: how many times, or what the label says.
import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import Kelprobe.Panel 1.0

RowLayout {
    id: row

    property string name
    property string label
    property bool takesCount: false
    property bool armed: false

    signal flipped(bool wanted, string count)

    spacing: Theme.gap

    Label {
        Layout.fillWidth: true
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
        visible: row.takesCount
        enabled: !row.armed
        placeholderText: qsTr("N")
        label: qsTr("N, the number for the fault: %1").arg(row.label)
        inputMethodHints: Qt.ImhDigitsOnly
        validator: IntValidator { bottom: 1; top: 999999 }
        horizontalAlignment: TextInput.AlignRight
        onAccepted: row.flipped(true, text)
    }
    TwoWaySwitch {
        objectName: "fault-" + row.name
        on: row.armed
        label: qsTr("Fault: %1").arg(row.label)
        onFlipped: row.flipped(wanted, row.takesCount ? count.text : "")
    }
}
