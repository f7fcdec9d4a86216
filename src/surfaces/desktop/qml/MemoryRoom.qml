import QtQuick
import Hearthkeep.DesignSystem

Scroller {
    id: room

    Component.onCompleted: memory.enter()
    Component.onDestruction: memory.leave()

    property string asked
    property string askedName
    contentHeight: content.height
    name: "Memory"

    Column {
        id: content
        width: parent.width
        spacing: 12
        RoomHead { width: parent.width; title: memory.hasReading ? "Pressure: " + memory.pressure : "Memory"; text: memory.hasReading ? [memory.used, memory.cpu, memory.swap].join(" · ") : "" }
        MeasureBar { width: parent.width; inner: memory.fraction || 0; name: memory.used || "" }
        ListSection { width: parent.width; title: "By app"; empty: "Looking…"; rows: memory.apps; action: "Quit"; onActed: (key, title) => { room.asked = key; room.askedName = title; quitting.ask() } }
    }
    ConfirmSheet {
        id: quitting
        title: "Quit " + room.askedName + "?"
        text: "It is asked to quit, and not forced. What isn't saved there may be lost."
        yes: "Quit"
        onConfirmed: memory.quit(room.asked)
    }
}
