import QtQuick

// How far a list is scrolled.
Rectangle {
    property Flickable list

    anchors.right: parent.right
    y: list.visibleArea.yPosition * list.height
    width: 4
    height: list.visibleArea.heightRatio * list.height
    radius: 2
    color: Theme.textQuiet
    opacity: 0.5
    visible: list.visibleArea.heightRatio < 1
}
