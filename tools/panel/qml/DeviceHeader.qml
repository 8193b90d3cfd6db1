// The device's name, its ids, whether a program uses it, and the switch that plugs it in.
import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import Kelprobe.Panel 1.0

RowLayout {
    id: header

    property QtObject device

    spacing: Theme.gap * 2

    ColumnLayout {
        Layout.fillWidth: true
        spacing: 2

        Label {
            Layout.fillWidth: true
            text: header.device.name
            textFormat: Text.PlainText
            color: Theme.text
            font.pixelSize: Theme.titleSize
            font.weight: Font.DemiBold
            elide: Text.ElideRight
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
        Label {
            Layout.fillWidth: true
            text: Bench.deviceCount > 1
                ? qsTr("device %1 of %2 · %3").arg(header.device.number).arg(Bench.deviceCount)
                    .arg(header.device.details)
                : header.device.details
            textFormat: Text.PlainText
            color: Theme.muted
            font.family: Theme.mono
            font.pixelSize: Theme.smallSize
            elide: Text.ElideRight
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
    }
    ColumnLayout {
        spacing: 2

        TwoWaySwitch {
            id: plug
            objectName: "plug"
            Layout.alignment: Qt.AlignRight
            enabled: Bench.connected
            label: qsTr("Plug")
            on: header.device.plugged
            onText: qsTr("plugged in")
            offText: qsTr("unplugged")
            onFlipped: header.device.setPlugged(wanted)
        }
        Label {
            Layout.alignment: Qt.AlignRight
            text: header.device.open ? qsTr("open in a program") : qsTr("no program has it open")
            textFormat: Text.PlainText
            color: Theme.muted
            font.pixelSize: Theme.smallSize
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
    }
}
