import QtQuick
import QtQuick.Window
import Hearthkeep.DesignSystem

// Every control in every state, to be looked at by day and by night.
Window {
    title: "Hearthkeep controls"
    width: 1000
    height: 900
    visible: true
    color: Theme.surface0
    property Item question: null

    component Part: Column {
        id: part
        property string title
        default property alias samples: row.data
        width: parent.width
        spacing: 6
        Line { text: part.title; isQuiet: true; font.pixelSize: Theme.captionSize }
        Flow { id: row; width: parent.width; spacing: 12 }
    }

    Scroller {
        anchors { fill: parent; margins: 24 }
        contentHeight: all.height
        name: "Controls"
        Column {
            id: all
            width: parent.width
            spacing: 20
            Part {
                title: "Button: quiet, primary, destructive, disabled"
                AppButton { text: "Quiet" }
                AppButton { text: "Primary"; kind: "primary" }
                AppButton { text: "Destructive"; kind: "destructive" }
                AppButton { text: "Disabled"; kind: "primary"; enabled: false }
                MenuButton { text: "Menu"; entries: [{ key: "a", name: "First", isSelected: true }, { key: "b", name: "Second", isSelected: false }] }
            }
            Part {
                title: "Type"
                Line { text: "Title"; font.pixelSize: Theme.titleSize; font.weight: Font.DemiBold }
                SectionTitle { text: "Headline" }
                Line { text: "Body" }
                Line { text: "Quiet"; isQuiet: true }
                Line { text: "Caption"; font.pixelSize: Theme.captionSize; isQuiet: true }
            }
            Part {
                title: "Badge"
                Badge { text: "Safe"; tone: "safe"; symbol: "safe" }
                Badge { text: "Look first"; tone: "caution"; symbol: "caution" }
                Badge { text: "Keep"; tone: "keep"; symbol: "keep" }
                Badge { text: "3"; tone: "action" }
            }
            Part {
                title: "Choice, search, way"
                Segments { names: ["Map", "List"]; current: 0 }
                SearchField { placeholder: "Search the scan" }
                Crumbs { width: 300; height: Theme.controlHeight; steps: ListModel { ListElement { key: "a"; name: "/" } ListElement { key: "b"; name: "home" } ListElement { key: "c"; name: "anna" } } }
            }
            Part {
                title: "Rows"
                CheckRow { width: 440; title: "pip cache"; reason: "Downloaded again the next time a project needs it."; size: "62.9 MB"; detail: "1 item"; canOpen: true }
                CheckRow { width: 440; title: "Duplicate copies"; reason: "Exact copy of holiday.mkv, which stays at Videos."; size: "44 MB"; detail: "Look first"; isTicked: false }
                FigureRow { width: 440; title: "Videos"; detail: "Your files"; figure: "62.9 MB"; fraction: 0.3; colour: Theme.kindColour("Your files") }
                FigureRow { width: 440; title: "chosen"; detail: "Cache"; figure: "12 MB"; fraction: 0.3; colour: Theme.kindColour("Cache"); isChosen: true; badge: "Open" }
            }
            Part {
                title: "Measure"
                MeasureBar { width: 440; fraction: 0.6; inner: 0.4; name: "60 % used" }
                MeasureBar { width: 440; fraction: 0.95; inner: 0.5; name: "95 % used" }
            }
            Part {
                title: "Banner, card, empty state"
                Banner { width: 440; text: "120.6 MB to the Trash. Undo available."; action: "Undo" }
                Banner { width: 440; text: "1 item couldn't go back." }
                Card { width: 440; height: 60; Line { anchors.centerIn: parent; text: "Card" } }
                EmptyState { text: "One sentence."; action: "One thing to do" }
            }
            Part {
                title: "Kinds"
                Repeater {
                    model: Object.keys(Theme.kinds)
                    Rectangle {
                        required property string modelData
                        width: 120; height: 44
                        color: Theme.kinds[modelData]
                        Line { anchors.centerIn: parent; text: parent.modelData; font.pixelSize: Theme.captionSize }
                    }
                }
            }
            Part {
                title: "Icons"
                Repeater {
                    model: ["home", "disk", "broom", "apps", "memory", "ports", "help", "down", "right", "check", "caution", "keep"]
                    Icon { required property string modelData; name: modelData; colour: Theme.text }
                }
            }
            Part {
                title: "Question"
                AppButton { text: "Ask"; onClicked: sheet.ask() }
            }
        }
    }
    ConfirmSheet {
        id: sheet
        title: "Empty the Trash?"
        text: "120.6 MB in the Trash. What is in it goes for good. This can't be undone."
        yes: "Empty Trash"
        yesKind: "destructive"
    }
}
