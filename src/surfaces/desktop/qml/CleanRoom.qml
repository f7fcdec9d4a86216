import QtQuick
import Hearthkeep.DesignSystem

FocusScope {
    id: room

    Component.onCompleted: clean.enter()
    Component.onDestruction: clean.leave()

    property bool showsHistory: false

    RoomHead {
        id: head
        anchors { left: parent.left; right: view.left; rightMargin: 16; top: parent.top }
        title: room.showsHistory ? "What was moved" : "What can go"
        text: room.showsHistory ? clean.freedText : clean.result !== "" ? clean.result : "Caches, copies and build output. What is ticked goes to the Trash."
    }
    Segments {
        id: view
        anchors { right: parent.right; top: parent.top }
        names: ["Plan", "History"]
        current: room.showsHistory ? 1 : 0
        onPicked: index => { room.showsHistory = index === 1 }
    }
    EmptyState {
        anchors.centerIn: parent
        visible: !room.showsHistory && !clean.hasPlan
        text: clean.isScanning ? "The scan is running." : "Nothing is known yet. Scan once to see what can go."
        action: clean.isScanning ? "" : "Scan"
        onActed: storage.scan()
    }
    Scroller {
        id: plan
        anchors { left: parent.left; right: parent.right; top: head.bottom; topMargin: 12; bottom: bar.top; bottomMargin: 12 }
        visible: !room.showsHistory && clean.hasPlan
        contentHeight: groups.height
        name: "What can go"
        Column {
            id: groups
            width: parent.width
            spacing: 12
            Line { width: parent.width; visible: clean.groups.count === 0 && clean.folders.count === 0; text: "Nothing to clear right now."; isQuiet: true }
            PlanGroup { width: parent.width; title: "Comes back by itself"; rows: clean.groups }
            PlanGroup { width: parent.width; title: "Build folders"; rows: clean.folders }
            PlanGroup { width: parent.width; title: "Worth a look"; rows: clean.worthALook }
            PlanGroup { width: parent.width; title: "Held back"; rows: clean.heldBack; canTick: false }
            PlanGroup { width: parent.width; title: "Look first"; rows: clean.lookFirst; canTick: false; canOpen: false }
        }
    }
    HistoryList {
        anchors { left: parent.left; right: parent.right; top: head.bottom; topMargin: 12; bottom: bar.top; bottomMargin: 12 }
        visible: room.showsHistory
    }
    Card {
        id: bar
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom }
        height: Math.max(60, sum.implicitHeight + 24)
        Line {
            id: sum
            anchors { left: parent.left; leftMargin: 16; right: showTrash.visible ? showTrash.left : act.left; rightMargin: 12; verticalCenter: parent.verticalCenter }
            text: room.showsHistory ? clean.trashText : clean.isClearing ? "Moving to the Trash…" : clean.barText
            wrapMode: Text.Wrap
            maximumLineCount: 2
        }
        AppButton {
            id: showTrash
            anchors { right: act.left; rightMargin: 8; verticalCenter: parent.verticalCenter }
            visible: room.showsHistory
            text: "Show Trash"
            onClicked: house.openTrash()
        }
        AppButton {
            id: act
            anchors { right: parent.right; rightMargin: 12; verticalCenter: parent.verticalCenter }
            text: room.showsHistory ? (clean.isEmptying ? "Emptying…" : "Empty Trash…") : clean.buttonText
            kind: room.showsHistory ? "destructive" : "primary"
            enabled: room.showsHistory ? clean.canEmpty && !clean.isEmptying : clean.canClear && !clean.isClearing
            onClicked: room.showsHistory ? emptyTrash.ask() : clean.clear()
        }
    }
    ConfirmSheet {
        id: emptyTrash
        title: "Empty the Trash?"
        text: clean.trashText + " What is in it goes for good, whoever put it there. This can't be undone."
        yes: "Empty Trash"
        yesKind: "destructive"
        onConfirmed: clean.emptyTrash()
    }
}
