import QtQuick
import Hearthkeep.DesignSystem

// Every act on record. Enter opens one; what is still in the Trash can be put back, all of it or one by one. The arrow
// keys go from act to act, Tab to the buttons of the current one.
RowList {
    id: history

    property string openAct: ""
    function turn(row) {
        const key = clean.history.at(row).key
        openAct = openAct === key ? "" : key
    }

    name: "History"
    model: clean.history
    onOpened: row => turn(row)
    Keys.onSpacePressed: if (currentIndex >= 0) turn(currentIndex)
    delegate: Column {
        id: act
        required property int index
        required property var model
        readonly property bool isOpen: history.openAct === model.key
        width: history.width - 8
        Accessible.role: Accessible.ListItem
        Accessible.name: head.Accessible.name
        Accessible.onPressAction: history.turn(act.index)
        Item {
            width: parent.width
            height: head.implicitHeight
            FigureRow {
                id: head
                anchors { left: parent.left; right: back.visible ? back.left : parent.right }
                title: act.model.title
                detail: act.model.told
                Accessible.ignored: true
            }
            MouseArea {
                anchors { left: parent.left; right: back.visible ? back.left : parent.right; top: parent.top; bottom: parent.bottom }
                onClicked: {
                    history.currentIndex = act.index
                    history.turn(act.index)
                }
            }
            AppButton {
                id: back
                anchors { right: parent.right; rightMargin: 8; verticalCenter: parent.verticalCenter }
                visible: act.model.canUndo
                text: "Put Back"
                activeFocusOnTab: act.ListView.isCurrentItem || activeFocus
                Accessible.name: "Put Back " + act.model.title
                onClicked: clean.putBack(act.model.key)
            }
        }
        Repeater {
            // Asked for again whenever the act tells something else of itself.
            model: act.isOpen && act.model.told ? clean.itemsOf(act.model.key) : []
            Item {
                id: item
                required property var modelData
                x: 20
                width: act.width - 20
                height: what.implicitHeight
                FigureRow {
                    id: what
                    anchors { left: parent.left; right: one.visible ? one.left : parent.right }
                    title: item.modelData.name
                    detail: item.modelData.state + " · " + item.modelData.place
                    figure: item.modelData.size
                }
                AppButton {
                    id: one
                    anchors { right: parent.right; rightMargin: 8; verticalCenter: parent.verticalCenter }
                    visible: item.modelData.canPutBack
                    text: "Put Back"
                    activeFocusOnTab: act.ListView.isCurrentItem || activeFocus
                    Accessible.name: "Put Back " + item.modelData.name
                    onClicked: clean.putBackItem(act.model.key, item.modelData.key)
                }
            }
        }
    }
    Line { anchors.centerIn: parent; visible: history.count === 0; text: "Nothing was moved yet."; isQuiet: true }
}
