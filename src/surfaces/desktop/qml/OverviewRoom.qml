import QtQuick
import QtQuick.Window
import Hearthkeep.DesignSystem

Scroller {
    id: room

    contentHeight: content.height
    name: "Overview"

    Column {
        id: content
        width: parent.width
        spacing: 20

        RoomHead { width: parent.width; title: house.headline; text: house.value }
        Card {
            width: parent.width
            height: disk.height + 32
            Column {
                id: disk
                anchors { left: parent.left; right: parent.right; top: parent.top; margins: 16 }
                spacing: 8
                Line { width: parent.width; text: house.diskText || "" }
                MeasureBar { width: parent.width; fraction: house.usedFraction || 0; inner: house.measuredFraction || 0; name: house.diskText || "" }
                Line { width: parent.width; text: house.forecast || ""; visible: text !== ""; isQuiet: true }
            }
        }
        Flow {
            width: parent.width
            spacing: 12
            Repeater {
                model: house.cards
                Card {
                    id: card
                    required property int number
                    required property string title
                    required property string level
                    required property string value
                    required property string headline
                    required property string badge
                    required property string action

                    width: content.width >= 760 ? (content.width - 24) / 3 : (content.width - 12) / 2
                    height: 168 * Theme.scale
                    border.color: level === "calm" ? Theme.line : Theme.toneColour(level)
                    Column {
                        anchors { left: parent.left; right: parent.right; top: parent.top; margins: 16 }
                        spacing: 6
                        Item {
                            width: parent.width
                            height: 22
                            Line { text: card.title; isQuiet: true; anchors.verticalCenter: parent.verticalCenter }
                            Badge { anchors.right: parent.right; text: card.badge; tone: card.level; anchors.verticalCenter: parent.verticalCenter }
                        }
                        Line { width: parent.width; text: card.value; font.pixelSize: Theme.headlineSize + 4; font.weight: Font.DemiBold }
                        Line { width: parent.width; text: card.headline; wrapMode: Text.WordWrap; maximumLineCount: 2; font.pixelSize: Theme.captionSize + 1 }
                    }
                    AppButton {
                        anchors { left: parent.left; bottom: parent.bottom; margins: 16 }
                        width: Math.min(implicitWidth, parent.width - 32)
                        text: card.action === "" ? "Open " + card.title : card.action
                        kind: card.level === "action" ? "primary" : "quiet"
                        onClicked: {
                            if (card.number === 1 && !house.hasScan && !house.isScanning)
                                storage.scan()
                            room.Window.window.go(card.number)
                        }
                    }
                }
            }
        }
        Column {
            width: parent.width
            spacing: 4
            visible: acts.count > 0
            SectionTitle { text: "Lately" }
            Repeater {
                id: acts
                model: house.acts
                Item {
                    id: act
                    required property string key
                    required property string title
                    required property string told
                    required property bool canUndo

                    width: content.width
                    height: 50 * Theme.scale
                    FigureRow {
                        anchors { left: parent.left; right: back.visible ? back.left : parent.right }
                        title: act.title
                        detail: act.told
                    }
                    AppButton {
                        id: back
                        anchors { right: parent.right; verticalCenter: parent.verticalCenter }
                        visible: act.canUndo
                        text: "Put Back"
                        Accessible.name: "Put Back " + act.title
                        onClicked: house.undoAct(act.key)
                    }
                }
            }
        }
        Item { width: 1; height: 8 }
    }
}
