import QtQuick

Rectangle {
    color: Theme.surface1
    radius: Theme.cardRadius
    border.width: 1
    border.color: Theme.line
}
