// A bar across the window that says what is wrong.
import QtQuick 2.15
import QtQuick.Controls 2.15
import Kelprobe.Panel 1.0

Rectangle {
    id: notice

    property string text

    visible: text !== ""
    implicitHeight: visible ? label.implicitHeight + Theme.gap * 1.5 : 0
    color: Theme.text
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text

    Label {
        id: label
        anchors.verticalCenter: parent.verticalCenter
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.leftMargin: Theme.gap * 2
        anchors.rightMargin: Theme.gap * 2
        text: notice.text
        textFormat: Text.PlainText
        color: Theme.window
        wrapMode: Text.Wrap
    }
}
