import QtQuick
import Hearthkeep.DesignSystem

// Rows of the plan under a title. What is behind a row opens below it.
Column {
    id: group

    property string title
    property var rows
    property bool canTick: true
    property bool canOpen: true
    property string openKey: ""

    spacing: 2
    visible: rows.count > 0
    SectionTitle { text: group.title }
    Repeater {
        model: group.rows
        Column {
            id: entry
            required property string key
            required property var model
            readonly property bool isOpen: group.openKey === key
            width: group.width
            CheckRow {
                width: parent.width
                title: entry.model.title
                reason: entry.model.reason
                size: entry.model.size
                detail: entry.model.detail
                isTicked: entry.model.isTicked
                canTick: group.canTick
                canOpen: group.canOpen
                isOpen: entry.isOpen
                onToggled: isTicked => clean.tick(entry.key, isTicked)
                onOpened: group.openKey = entry.isOpen ? "" : entry.key
            }
            Repeater {
                // Asked for again whenever the row's sum changes.
                model: entry.isOpen && entry.model.size ? clean.itemsBehind(entry.key) : []
                FigureRow {
                    required property var modelData
                    x: 32
                    width: entry.width - 32
                    title: modelData.name
                    detail: modelData.place
                    figure: modelData.size
                }
            }
        }
    }
}
