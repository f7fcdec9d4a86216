import QtQuick

// Where the keyboard is.
Rectangle {
    property bool isOn: false

    anchors.fill: parent
    anchors.margins: -2
    visible: isOn
    color: "transparent"
    radius: Theme.controlRadius + 2
    border.width: 2
    border.color: Theme.accent
}
