import QtQuick 2.15
import QtQuick.Controls 2.15
import Kelprobe.Panel 1.0

Label {
    color: Theme.muted
    font.pixelSize: Theme.smallSize
    font.weight: Font.DemiBold
    textFormat: Text.PlainText
    Accessible.role: Accessible.Heading
    Accessible.name: text
}
