import QtQuick

// A button that opens a short list to pick from. `entries` are maps with a key, a name and whether it is the present one.
AppButton {
    id: menu

    property var entries: []
    property bool isOpen: false
    signal picked(string key)

    symbol: "down"
    Accessible.role: Accessible.ButtonMenu
    onClicked: isOpen ? close() : open()
    Keys.onDownPressed: open()

    function open() {
        isOpen = true
        list.parent = Window.contentItem
        const place = menu.mapToItem(Window.contentItem, 0, menu.height + 4)
        list.x = Math.max(8, Math.min(place.x, Window.contentItem.width - list.width - 8))
        list.y = place.y
        list.currentIndex = Math.max(0, entries.findIndex(entry => entry.isSelected))
        list.forceActiveFocus(Qt.PopupFocusReason)
    }
    function close() {
        isOpen = false
        menu.forceActiveFocus(Qt.PopupFocusReason)
    }
    function pick(index) {
        const key = entries[index].key
        close()
        picked(key)
    }
    Component.onDestruction: list.destroy()

    ListView {
        id: list
        visible: menu.isOpen
        z: 90
        width: Math.max(menu.width, 240)
        height: Math.min(contentHeight, 320)
        clip: true
        model: menu.entries
        keyNavigationEnabled: true
        highlightMoveDuration: 0
        Accessible.role: Accessible.PopupMenu
        Accessible.name: menu.text
        onActiveFocusChanged: if (!activeFocus && !menu.isHovered) menu.isOpen = false  // a press on the button closes it itself
        Keys.onReturnPressed: menu.pick(currentIndex)
        Keys.onEnterPressed: menu.pick(currentIndex)
        Keys.onSpacePressed: menu.pick(currentIndex)
        Keys.onEscapePressed: menu.close()
        Keys.onTabPressed: menu.close()
        Keys.onBacktabPressed: menu.close()
        Rectangle {
            z: -1
            anchors.fill: parent
            color: Theme.surface2
            border.width: 1
            border.color: Theme.line
        }
        delegate: Rectangle {
            id: entry
            required property int index
            required property var modelData
            width: list.width
            height: Theme.controlHeight + 4
            color: ListView.isCurrentItem || area.containsMouse ? Theme.hover : Theme.surface2
            border.width: 1
            border.color: Theme.line
            Accessible.role: Accessible.MenuItem
            Accessible.name: modelData.name
            Accessible.onPressAction: menu.pick(index)
            Line {
                anchors { left: parent.left; right: mark.left; leftMargin: 12; rightMargin: 8; verticalCenter: parent.verticalCenter }
                text: entry.modelData.name
                elide: Text.ElideMiddle
                Accessible.ignored: true
            }
            Icon {
                id: mark
                anchors { right: parent.right; rightMargin: 10; verticalCenter: parent.verticalCenter }
                visible: entry.modelData.isSelected === true
                name: "check"
                colour: Theme.accent
            }
            MouseArea {
                id: area
                anchors.fill: parent
                hoverEnabled: true
                onClicked: menu.pick(entry.index)
            }
        }
    }
}
