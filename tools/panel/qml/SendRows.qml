// Sends reports that no control of the device sends: any bytes, or many reports at once.
import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import Kelprobe.Panel 1.0

ColumnLayout {
    id: rows

    signal reportSent(string bytes)
    signal flooded(string count)

    spacing: Theme.gap

    RowLayout {
        Layout.fillWidth: true
        spacing: Theme.gap

        Field {
            id: bytes
            objectName: "bytes"
            Layout.fillWidth: true
            label: qsTr("Input report, bytes in hexadecimal")
            placeholderText: qsTr("bytes, as 03 01 00")
            font.family: text === "" ? Qt.application.font.family : Theme.mono
            validator: RegularExpressionValidator { regularExpression: /( *[0-9A-Fa-f]{2})+ */ }
            onAccepted: rows.reportSent(text)
        }
        ActionButton {
            text: qsTr("Send")
            enabled: bytes.acceptableInput
            Accessible.name: qsTr("Send the input report")
            onClicked: rows.reportSent(bytes.text)
        }
    }
    RowLayout {
        Layout.fillWidth: true
        spacing: Theme.gap

        Label {
            Layout.fillWidth: true
            text: qsTr("many reports at once")
            textFormat: Text.PlainText
            color: Theme.text
            wrapMode: Text.Wrap
            Accessible.ignored: true // the field has the name
        }
        Field {
            id: flood
            objectName: "flood"
            Layout.preferredWidth: Theme.fontSize * 5
            label: qsTr("Many reports at once: how many, at most 65536")
            placeholderText: qsTr("reports")
            inputMethodHints: Qt.ImhDigitsOnly
            validator: IntValidator { bottom: 1; top: 65536 }
            horizontalAlignment: TextInput.AlignRight
            onAccepted: rows.flooded(text)
        }
        ActionButton {
            text: qsTr("Send")
            enabled: flood.acceptableInput
            Accessible.name: qsTr("Send many reports at once")
            onClicked: rows.flooded(flood.text)
        }
    }
}
