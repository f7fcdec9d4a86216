import QtQuick
import QtQuick.Window
import Hearthkeep.DesignSystem

Window {
    id: window

    title: "Hearthkeep"
    width: 1180
    height: 780
    minimumWidth: 840
    minimumHeight: 560
    visible: true
    color: Theme.surface0

    readonly property var roomFiles: ["OverviewRoom.qml", "StorageRoom.qml", "CleanRoom.qml", "AppsRoom.qml", "MemoryRoom.qml", "PortsRoom.qml"]
    readonly property int room: house ? house.room : 0

    onVisibleChanged: if (!visible && question) question.close()
    // What is open over the rooms; they wait for its answer.
    property Item question: null
    // The keyboard goes along, to the first thing of the room; -1 is the room that is shown.
    function go(number) {
        if (number >= 0)
            house.navigate(number)
        pane.enter()
    }

    Shortcut { sequence: "Ctrl+1"; enabled: !window.question; onActivated: window.go(0) }
    Shortcut { sequence: "Ctrl+2"; enabled: !window.question; onActivated: window.go(1) }
    Shortcut { sequence: "Ctrl+3"; enabled: !window.question; onActivated: window.go(2) }
    Shortcut { sequence: "Ctrl+4"; enabled: !window.question; onActivated: window.go(3) }
    Shortcut { sequence: "Ctrl+5"; enabled: !window.question; onActivated: window.go(4) }
    Shortcut { sequence: "Ctrl+6"; enabled: !window.question; onActivated: window.go(5) }
    Shortcut { sequences: ["Ctrl+Z"]; enabled: !window.question; onActivated: house.undo() }
    Shortcut { sequences: ["Ctrl+Shift+Z", "Ctrl+Y"]; enabled: !window.question; onActivated: house.redo() }
    Shortcut { sequences: ["Ctrl+Q"]; onActivated: Qt.quit() }
    Shortcut { sequences: ["F1"]; enabled: !window.question; onActivated: help.ask() }
    Shortcut { sequences: ["Ctrl+W"]; onActivated: window.close() }
    Shortcut {
        sequence: "Ctrl+K"
        enabled: !window.question
        onActivated: {
            window.go(1)
            pane.item.beginSearch()
        }
    }

    Item {
        anchors.fill: parent
        enabled: !window.question
        Sidebar {
            id: sidebar
            anchors { left: parent.left; top: parent.top; bottom: parent.bottom }
            width: 220
            onAskedForHelp: help.ask()
        }
        FocusScope {
            anchors { left: sidebar.right; right: parent.right; top: parent.top; bottom: parent.bottom }
            Column {
                id: banners
                anchors { left: parent.left; right: parent.right; top: parent.top; margins: 24; topMargin: 16 }
                spacing: 8
                Banner {
                    width: parent.width
                    text: house.notice || ""
                    onDismissed: house.dismissNotice()
                }
                Banner {
                    width: parent.width
                    text: house.undoText || ""
                    action: "Undo"
                    onDismissed: house.dismissOffer()
                    onActed: house.undoOffered()
                }
            }
            Loader {
                id: pane
                anchors { left: parent.left; right: parent.right; top: banners.bottom; bottom: parent.bottom; margins: 24; topMargin: banners.height > 0 ? 16 : 8 }
                focus: true
                source: window.roomFiles[window.room]
                function enter() {
                    pane.item.forceActiveFocus(Qt.ShortcutFocusReason)
                    const first = pane.item.nextItemInFocusChain(true)
                    for (let item = first; item; item = item.parent) {
                        if (item === pane)
                            first.forceActiveFocus(Qt.ShortcutFocusReason)
                    }
                }
            }
        }
    }
    HelpSheet { id: help }
    KeyboardKeeper { window: window }
}
