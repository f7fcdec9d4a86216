import QtQuick
import Hearthkeep.DesignSystem

Scroller {
    id: room

    Component.onCompleted: apps.enter()
    Component.onDestruction: apps.leave()

    contentHeight: content.height
    name: "Apps"

    Column {
        id: content
        width: parent.width
        spacing: 12
        RoomHead { width: parent.width; title: "Apps"; text: apps.isLoading ? "Measuring apps and what they keep…" : "What is installed, what it keeps, and what starts by itself." }
        ListSection { width: parent.width; title: "Left behind"; empty: "Removed apps left nothing that is certain."; rows: apps.leftovers }
        ListSection { width: parent.width; title: "Installed"; empty: apps.isLoading ? "" : "No apps are known here."; rows: apps.apps }
        ListSection { width: parent.width; title: "Starts by itself"; empty: apps.backgroundText || ""; rows: apps.background }
    }
}
