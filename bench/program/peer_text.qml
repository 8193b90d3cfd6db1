// The bare window with one line of text in it.
import QtQuick 2.9
import QtQuick.Controls 2.2
import QtQuick.Controls.Styles 1.4
import QtQuick.Layouts 1.1

ApplicationWindow {
    visible: true
    width: 640
    height: 480
    title: "Bare window"

    Text {
        text: "Kelprobe"
    }
}
