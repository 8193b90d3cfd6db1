// A line of text to type into. `label` is its name for screen readers.
import QtQuick 2.15
import QtQuick.Controls 2.15
import Kelprobe.Panel 1.0

TextField {
    id: field

    property string label

    color: Theme.text
    placeholderTextColor: Theme.muted
    selectionColor: Theme.accent
    selectedTextColor: Theme.accentText
    selectByMouse: true
    leftPadding: Theme.gap
    rightPadding: Theme.gap
    topPadding: 4
    bottomPadding: 4
    verticalAlignment: TextInput.AlignVCenter
    opacity: enabled ? 1 : 0.45
    Accessible.name: label
    Accessible.role: Accessible.EditableText

    background: Rectangle {
        implicitHeight: Theme.fontSize + Theme.gap * 1.75
        radius: 4
        color: Theme.surface
        border.color: field.activeFocus ? Theme.accent : Theme.edge
        border.width: field.activeFocus ? 2 : 1
    }
}
