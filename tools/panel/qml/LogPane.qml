// The log of the device. It follows its end unless the user has scrolled up.
import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import Kelprobe.Panel 1.0

ColumnLayout {
    id: pane

    property QtObject log
    property string hint // how to get reports

    signal saveRequested()

    function focusFilter() {
        filter.forceActiveFocus(Qt.ShortcutFocusReason)
        filter.selectAll()
    }

    spacing: 0

    FontMetrics {
        id: mono
        font.family: Theme.mono
        font.pixelSize: Theme.smallSize
        readonly property real digit: advanceWidth("0")
    }

    RowLayout {
        Layout.fillWidth: true
        Layout.margins: Theme.gap * 1.5
        Layout.bottomMargin: Theme.gap
        spacing: Theme.gap

        SectionTitle { text: qsTr("Log") }
        Label {
            objectName: "lineCount"
            Layout.fillWidth: true
            text: pane.log.countText
            textFormat: Text.PlainText
            color: Theme.muted
            font.pixelSize: Theme.smallSize
            elide: Text.ElideRight
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
        ActionButton {
            objectName: "copy"
            text: qsTr("Copy")
            enabled: pane.log.hasSelection
            onClicked: pane.log.copySelection()
        }
        ActionButton {
            objectName: "clear"
            text: qsTr("Clear")
            onClicked: pane.log.clear()
        }
        ActionButton {
            objectName: "save"
            text: qsTr("Save…")
            Accessible.name: qsTr("Save as a recording")
            onClicked: pane.saveRequested()
        }
    }
    RowLayout {
        Layout.fillWidth: true
        Layout.leftMargin: Theme.gap * 1.5
        Layout.rightMargin: Theme.gap * 1.5
        Layout.bottomMargin: Theme.gap
        spacing: Theme.gap

        Field {
            id: filter
            objectName: "filter"
            Layout.fillWidth: true
            placeholderText: qsTr("Filter: text or bytes")
            label: qsTr("Filter of the log")
            onTextChanged: pane.log.filter = text
            Keys.onEscapePressed: clear()
        }
        RowLayout {
            spacing: Theme.gap / 2

            Repeater {
                model: [qsTr("All"), qsTr("In"), qsTr("Out"), qsTr("Other")] // in the order of LogView::Show
                delegate: ActionButton {
                    objectName: "show-" + index
                    leftPadding: Theme.gap
                    rightPadding: Theme.gap
                    text: modelData
                    checked: pane.log.show === index
                    Accessible.role: Accessible.RadioButton
                    Accessible.name: qsTr("Show: %1").arg(text)
                    onClicked: pane.log.show = index
                }
            }
        }
    }
    LogLine {
        id: head
        Layout.fillWidth: true
        time: qsTr("Seconds")
        direction: qsTr("Dir")
        meaning: qsTr("Meaning")
        bytes: qsTr("Bytes")
        textColor: Theme.muted
        timeWidth: mono.digit * 10
        directionWidth: mono.digit * 3
        bytesWidth: mono.digit * (width > mono.digit * 80 ? 23 : 8)
    }
    Rectangle {
        Layout.fillWidth: true
        implicitHeight: 1
        color: Theme.line
    }
    Rectangle {
        Layout.fillWidth: true
        Layout.fillHeight: true
        color: Theme.surface

        ListView {
            id: list
            objectName: "log"
            anchors.fill: parent
            anchors.topMargin: 2
            anchors.bottomMargin: 2
            clip: true
            model: pane.log
            activeFocusOnTab: true
            currentIndex: -1 // the log has its own selection
            keyNavigationEnabled: false
            boundsBehavior: Flickable.StopAtBounds
            reuseItems: true
            Accessible.role: Accessible.List
            Accessible.name: qsTr("Log, %1").arg(pane.log.countText)

            readonly property real rowHeight: head.implicitHeight

            // Whether the focus came from the mouse. No frame is shown then.
            property bool clicked: false
            onActiveFocusChanged: if (!activeFocus) clicked = false

            // Whether the view scrolls to new lines.
            property bool following: true
            function showEnd() {
                if (following)
                    positionViewAtEnd()
            }
            function show(row) {
                if (row < 0)
                    return
                positionViewAtIndex(row, ListView.Contain)
                following = atYEnd
            }
            onMovementStarted: following = false
            onMovementEnded: following = atYEnd
            onHeightChanged: Qt.callLater(showEnd)

            // Not onCountChanged, which is emitted a frame later.
            Connections {
                target: pane.log
                function onRowsInserted() { Qt.callLater(list.showEnd) }
                function onModelReset() { list.following = true }
            }

            Keys.onPressed: {
                const page = Math.max(1, Math.floor(height / rowHeight) - 1)
                const moves = {}
                moves[Qt.Key_Up] = -1
                moves[Qt.Key_Down] = 1
                moves[Qt.Key_PageUp] = -page
                moves[Qt.Key_PageDown] = page
                moves[Qt.Key_Home] = -count
                moves[Qt.Key_End] = count
                clicked = false
                event.accepted = true
                if (event.key in moves)
                    show(pane.log.moveSelection(moves[event.key], event.modifiers & Qt.ShiftModifier))
                else if (event.matches(StandardKey.Copy))
                    pane.log.copySelection()
                else if (event.matches(StandardKey.SelectAll))
                    pane.log.selectAll()
                else
                    event.accepted = false
            }

            ScrollBar.vertical: PaneScrollBar {
                id: scrollBar
                onPressedChanged: list.following = !pressed && list.atYEnd
            }

            delegate: LogLine {
                width: ListView.view.width - scrollBar.width
                time: model.time
                direction: model.direction
                bytes: model.bytes
                meaning: model.meaning
                timeWidth: head.timeWidth
                directionWidth: head.directionWidth
                bytesWidth: head.bytesWidth
                selected: model.number >= pane.log.firstSelected
                    && model.number <= pane.log.lastSelected
                Accessible.role: Accessible.ListItem
                Accessible.name: model.line
                Accessible.selected: selected
            }

            // Selects lines. The wheel still scrolls.
            MouseArea {
                anchors.fill: parent
                anchors.rightMargin: scrollBar.width
                preventStealing: true
                z: -1
                function rowAt(y) {
                    const last = list.count - 1
                    const row = list.indexAt(1, list.contentY + Math.max(0, Math.min(y, height - 1)))
                    return row < 0 ? last : row
                }
                onPressed: {
                    list.forceActiveFocus(Qt.MouseFocusReason)
                    list.clicked = true
                    pane.log.select(rowAt(mouse.y), mouse.modifiers & Qt.ShiftModifier)
                }
                onPositionChanged: {
                    const row = rowAt(mouse.y)
                    pane.log.select(row, true)
                    list.show(row)
                }
            }
        }
        Label {
            anchors.centerIn: parent
            width: parent.width - Theme.gap * 4
            visible: list.count === 0
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            color: Theme.muted
            text: pane.log.filter === "" && pane.log.show === 0
                ? qsTr("No reports yet. %1").arg(pane.hint)
                : qsTr("The filter matches no line.")
        }
        FocusFrame {
            visible: list.activeFocus && !list.clicked
            anchors.margins: 0
            radius: 0
        }
    }
    Rectangle {
        Layout.fillWidth: true
        implicitHeight: 1
        color: Theme.line
    }
    // The whole line that was selected last.
    Flickable {
        Layout.fillWidth: true
        Layout.preferredHeight: Math.min(contentHeight, Theme.fontSize * 8)
        visible: whole.text !== ""
        contentHeight: whole.height
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        ScrollBar.vertical: PaneScrollBar { }

        TextEdit {
            id: whole
            objectName: "whole"
            width: parent.width
            padding: Theme.gap
            leftPadding: Theme.gap * 1.5
            rightPadding: Theme.gap * 1.5
            readOnly: true
            selectByMouse: true
            text: pane.log.currentLine.trim()
            textFormat: TextEdit.PlainText
            wrapMode: TextEdit.Wrap
            color: Theme.text
            selectionColor: Theme.accent
            selectedTextColor: Theme.accentText
            font.family: Theme.mono
            font.pixelSize: Theme.smallSize
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
    }
}
