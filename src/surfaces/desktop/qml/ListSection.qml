import QtQuick
import Hearthkeep.DesignSystem

// A titled list of figures in a room that scrolls as a whole.
Column {
    id: section

    property string title
    property string empty
    property var rows
    property string action
    signal acted(string key, string title)

    spacing: 2
    SectionTitle { text: section.title }
    Line { text: section.empty; visible: text !== "" && section.rows.count === 0; isQuiet: true; width: parent.width; wrapMode: Text.WordWrap }
    Repeater {
        model: section.rows
        Item {
            id: entry
            required property string key
            required property var model
            width: section.width
            height: row.implicitHeight
            FigureRow {
                id: row
                anchors { left: parent.left; right: button.visible ? button.left : parent.right; rightMargin: button.visible ? 8 : 0 }
                title: entry.model.title
                detail: entry.model.detail
                figure: entry.model.size
                badge: entry.model.badge
                tone: entry.model.tone
            }
            AppButton {
                id: button
                anchors { right: parent.right; verticalCenter: parent.verticalCenter }
                visible: section.action !== "" && entry.model.tone === "good"
                text: section.action
                Accessible.name: text + " " + entry.model.title
                onClicked: section.acted(entry.key, entry.model.title)
            }
        }
    }
    Item { width: 1; height: 16 }
}
