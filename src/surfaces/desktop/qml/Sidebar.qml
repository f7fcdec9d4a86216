import QtQuick
import Hearthkeep.DesignSystem

Rectangle {
    id: sidebar

    signal askedForHelp

    color: Theme.surface1

    Rectangle {
        anchors { right: parent.right; top: parent.top; bottom: parent.bottom }
        width: 1
        color: Theme.line
    }
    SectionTitle {
        id: name
        anchors { left: parent.left; top: parent.top; leftMargin: 20; topMargin: 22 }
        text: "Hearthkeep"
    }
    Column {
        anchors { left: parent.left; right: parent.right; top: name.bottom; margins: 10; topMargin: 18 }
        spacing: 2
        Repeater {
            model: house.rooms
            Rectangle {
                id: entry
                required property int number
                required property string title
                required property string level
                required property string icon
                required property string badge
                readonly property bool isHere: house.room === number

                width: parent.width
                height: 38 * Theme.scale
                radius: Theme.controlRadius
                color: isHere ? Theme.hover : area.containsMouse ? Theme.surface2 : "transparent"
                activeFocusOnTab: true
                Accessible.role: Accessible.PageTab
                Accessible.name: title + (badge === "" ? "" : ", " + badge)
                Accessible.selected: isHere
                Accessible.onPressAction: house.navigate(number)
                Keys.onReturnPressed: house.navigate(number)
                Keys.onEnterPressed: house.navigate(number)
                Keys.onSpacePressed: house.navigate(number)
                Keys.onDownPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
                Keys.onUpPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.TabFocusReason)
                Icon {
                    id: icon
                    anchors { left: parent.left; leftMargin: 10; verticalCenter: parent.verticalCenter }
                    name: entry.icon
                    colour: entry.isHere ? Theme.accent : Theme.textQuiet
                }
                Line {
                    anchors { left: icon.right; leftMargin: 10; right: dot.left; rightMargin: 6; verticalCenter: parent.verticalCenter }
                    text: entry.title
                    font.weight: entry.isHere ? Font.DemiBold : Font.Normal
                    Accessible.ignored: true
                }
                Badge {
                    id: dot
                    anchors { right: parent.right; rightMargin: 8; verticalCenter: parent.verticalCenter }
                    text: entry.level === "calm" ? "" : entry.badge
                    tone: entry.level
                    Accessible.ignored: true
                }
                MouseArea {
                    id: area
                    anchors.fill: parent
                    hoverEnabled: true
                    onClicked: house.navigate(entry.number)
                }
                FocusFrame { isOn: entry.activeFocus; anchors.margins: 0 }
            }
        }
    }
    AppButton {
        id: help
        anchors { left: parent.left; leftMargin: 10; bottom: promise.top; bottomMargin: 12 }
        text: "Help"
        onClicked: sidebar.askedForHelp()
    }
    Line {
        id: promise
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom; margins: 20; leftMargin: 12 }
        text: "Everything stays on this computer."
        isQuiet: true
        font.pixelSize: Theme.captionSize
        wrapMode: Text.WordWrap
    }
}
