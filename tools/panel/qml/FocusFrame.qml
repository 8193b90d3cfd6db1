// Shows that a control has the keyboard's focus. To be placed in the control.
import QtQuick 2.15
import Kelprobe.Panel 1.0

Rectangle {
    anchors.fill: parent
    anchors.margins: -3
    color: "transparent"
    border.color: Theme.accent
    border.width: 2
    radius: 7
}
