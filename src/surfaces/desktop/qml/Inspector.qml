import QtQuick
import Hearthkeep.DesignSystem

// What is known of the chosen thing, and what can be done with it.
Card {
    id: inspector

    signal askedToMove

    Scroller {
        name: "What is known of it"
        anchors { left: parent.left; right: parent.right; top: parent.top; bottom: buttons.top; margins: 16; bottomMargin: 12 }
        contentHeight: details.height
        visible: storage.chosen !== ""
        Column {
            id: details
            width: parent.width
            spacing: 8
            SectionTitle { width: parent.width; text: storage.chosenName || ""; wrapMode: Text.WrapAnywhere; maximumLineCount: 3 }
            Line { width: parent.width; text: [storage.chosenSize, storage.chosenShare].filter(t => t).join(" · ") }
            Line { width: parent.width; text: [storage.chosenKind, storage.chosenPlace].filter(t => t).join(" · "); isQuiet: true; wrapMode: Text.WrapAnywhere; maximumLineCount: 3; font.pixelSize: Theme.captionSize }
            Line { width: parent.width; text: storage.chosenWhat || ""; isQuiet: true; wrapMode: Text.Wrap; elide: Text.ElideNone }
            Badge { text: storage.verdict ? storage.verdictWord : ""; tone: storage.verdict || "neutral"; symbol: storage.verdict || "" }
            Line { width: parent.width; text: storage.verdictText || ""; wrapMode: Text.Wrap; elide: Text.ElideNone; visible: text !== "" }
            Fact { label: "If it goes"; value: storage.removal || "" }
            Fact { label: "The better way"; value: storage.betterWay || "" }
            Repeater {
                model: storage.facts
                Fact {
                    required property var model
                    label: model.label
                    value: model.value
                    tone: model.tone
                }
            }
        }
    }
    component Fact: Column {
        property alias label: caption.text
        property alias value: words.text
        property string tone: "neutral"
        width: details.width
        visible: value !== ""
        Line { id: caption; width: parent.width; isQuiet: true; font.pixelSize: Theme.captionSize }
        Line { id: words; width: parent.width; wrapMode: Text.Wrap; elide: Text.ElideNone; color: parent.tone === "neutral" ? Theme.text : Theme.toneColour(parent.tone) }
    }
    Line {
        anchors { left: parent.left; right: parent.right; top: parent.top; margins: 16 }
        visible: storage.chosen === ""
        text: storage.tileText || "Choose something to see what it is and what would happen if it went."
        isQuiet: true
        wrapMode: Text.Wrap
        elide: Text.ElideNone
    }
    Column {
        id: buttons
        anchors { left: parent.left; right: parent.right; bottom: parent.bottom; margins: 16 }
        visible: storage.chosen !== ""
        spacing: 8
        AppButton {
            width: parent.width
            text: "Show in Files"
            onClicked: storage.reveal()
        }
        AppButton {
            width: parent.width
            enabled: storage.canTrash && !storage.isMoving
            text: storage.isMoving ? "Moving…" : "Move to Trash"
            kind: "primary"
            onClicked: inspector.askedToMove()
        }
    }
}
