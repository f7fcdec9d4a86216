import QtQuick

// One line of what happened, with what can be done about it.
Rectangle {
    id: banner

    property string text
    property string action
    signal acted
    signal dismissed

    visible: text !== ""
    implicitHeight: visible ? 48 * Theme.scale : 0
    color: Theme.surface2
    border.width: 1
    border.color: Theme.line
    radius: Theme.cardRadius
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text

    Line {
        anchors { left: parent.left; leftMargin: 16; right: buttons.left; rightMargin: 12; verticalCenter: parent.verticalCenter }
        text: banner.text
    }
    Row {
        id: buttons
        anchors { right: parent.right; rightMargin: 8; verticalCenter: parent.verticalCenter }
        spacing: 8
        AppButton {
            visible: banner.action !== ""
            text: banner.action
            kind: "primary"
            onClicked: banner.acted()
        }
        AppButton {
            text: "Close"
            onClicked: banner.dismissed()
        }
    }
}
