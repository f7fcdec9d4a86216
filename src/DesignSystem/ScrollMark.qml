import QtQuick

// How far a list is scrolled; stronger while the arrow keys scroll it.
Rectangle {
    property Flickable list

    anchors.right: parent.right
    y: list.visibleArea.yPosition * list.height
    width: list.activeFocus ? 6 : 4
    height: list.visibleArea.heightRatio * list.height
    radius: width / 2
    color: list.activeFocus ? Theme.accent : Theme.textQuiet
    opacity: list.activeFocus ? 1 : 0.5
    visible: list.visibleArea.heightRatio < 1
}
