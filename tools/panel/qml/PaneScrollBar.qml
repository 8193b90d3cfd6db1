// A scroll bar that is seen whenever there is more than fits.
import QtQuick 2.15
import QtQuick.Controls 2.15

ScrollBar {
    policy: size < 1 ? ScrollBar.AlwaysOn : ScrollBar.AlwaysOff
    minimumSize: 0.08 // large enough for the mouse, however long the content is
}
