// A line of the log in columns. The widths are those of the log's head.
import QtQuick 2.15
import QtQuick.Controls 2.15
import Kelprobe.Panel 1.0

Rectangle {
    id: row

    property string time
    property string direction
    property string bytes
    property string meaning
    property bool selected: false
    property color textColor: Theme.text
    property real timeWidth
    property real directionWidth
    property real bytesWidth

    color: selected ? Theme.selection : "transparent"
    implicitHeight: Theme.fontSize + 6

    component Cell: Label {
        height: row.height
        textFormat: Text.PlainText
        verticalAlignment: Text.AlignVCenter
        color: row.textColor
        font.family: Theme.mono
        font.pixelSize: Theme.smallSize
        elide: Text.ElideRight
    }

    Cell {
        id: time
        x: Theme.gap
        width: row.timeWidth
        horizontalAlignment: Text.AlignRight
        text: row.time
        color: Theme.muted
    }
    Cell {
        id: direction
        anchors.left: time.right
        anchors.leftMargin: Theme.gap * 1.5
        width: row.directionWidth
        text: row.direction
        font.weight: row.direction === "in" ? Font.Bold : Font.Normal
    }
    Cell {
        id: bytes
        anchors.left: direction.right
        anchors.leftMargin: Theme.gap * 1.5
        width: row.bytesWidth
        text: row.bytes
    }
    Cell {
        // Events without a report use the room of the bytes.
        anchors.left: row.bytes === "" ? direction.right : bytes.right
        anchors.leftMargin: Theme.gap * 1.5
        anchors.right: parent.right
        anchors.rightMargin: Theme.gap
        text: row.meaning
        color: row.bytes === "" ? Theme.muted : row.textColor // reports first
        font.family: Qt.application.font.family
    }
}
