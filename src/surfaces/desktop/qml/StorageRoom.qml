import QtQuick
import Hearthkeep 1.0
import Hearthkeep.DesignSystem

FocusScope {
    id: room

    Component.onCompleted: storage.enter()
    Component.onDestruction: storage.leave()

    readonly property bool isWide: width > 860
    readonly property bool isSearching: (storage.query || "") !== ""
    property bool prefersMap: true
    readonly property bool showsMap: !isSearching && (isWide || prefersMap)
    readonly property bool showsList: isSearching || isWide || !prefersMap
    function beginSearch() { search.begin() }
    function handle(event) {
        if (event.key === Qt.Key_Delete && storage.canTrash && !storage.isMoving) {
            confirm.askAboutChosen()
            event.accepted = true
        } else if (event.key === Qt.Key_Backspace) {
            storage.goUp()
            event.accepted = true
        } else if (event.key === Qt.Key_Escape && room.isSearching) {
            search.clear()
            event.accepted = true
        }
    }

    RoomHead {
        id: head
        anchors { left: parent.left; right: actions.left; rightMargin: 16; top: parent.top }
        title: storage.capacity || "Storage"
        isTrouble: !storage.isScanning && storage.error !== ""
        text: storage.isScanning ? storage.progressText : storage.error !== "" ? storage.error : storage.hasScan ? [storage.scanned, storage.unreadable].filter(t => t).join(" · ") : "Not scanned yet. Scan once to see what's taking space."
    }
    Row {
        id: actions
        anchors { right: parent.right; top: parent.top }
        spacing: 8
        MenuButton {
            text: storage.driveName || "Drive"
            width: Math.min(implicitWidth, 200)
            Accessible.name: "Drive: " + text
            entries: storage.driveChoices
            onPicked: key => key === "" ? folder.open() : storage.selectDrive(key)
        }
        AppButton {
            visible: storage.isScanning || storage.hasScan
            text: storage.isScanning ? "Cancel" : "Scan Again"
            kind: storage.isScanning ? "quiet" : "primary"
            onClicked: storage.isScanning ? storage.cancel() : storage.scan()
        }
    }
    Column {
        id: progress
        anchors { left: parent.left; right: parent.right; top: head.bottom; topMargin: 4 }
        visible: storage.isScanning
        height: visible ? implicitHeight : 0
        spacing: 2
        Line { width: parent.width; text: storage.progressKinds || ""; isQuiet: true; font.pixelSize: Theme.captionSize }
        Line { width: parent.width; text: storage.progressPlace || ""; isQuiet: true; elide: Text.ElideMiddle; font.pixelSize: Theme.captionSize }
    }
    Item {
        id: tools
        anchors { left: parent.left; right: parent.right; top: progress.bottom; topMargin: 12 }
        height: Theme.controlHeight
        visible: storage.hasScan
        Crumbs {
            anchors { left: parent.left; right: search.left; rightMargin: 12; verticalCenter: parent.verticalCenter }
            height: parent.height
            steps: storage.crumbs
            onPicked: key => storage.open(key)
        }
        SearchField {
            id: search
            anchors { right: view.visible ? view.left : parent.right; rightMargin: view.visible ? 8 : 0 }
            width: room.isWide ? 280 : 170
            placeholder: "Search the scan"
            onEdited: text => storage.search(text)
            text: storage.query
            onLeftDown: list.visible ? list.forceActiveFocus(Qt.TabFocusReason) : map.forceActiveFocus(Qt.TabFocusReason)
        }
        Segments {
            id: view
            anchors.right: parent.right
            visible: !room.isWide && !room.isSearching
            names: ["Map", "List"]
            current: room.prefersMap ? 0 : 1
            onPicked: index => { room.prefersMap = index === 0 }
        }
    }
    EmptyState {
        anchors.centerIn: parent
        visible: !storage.hasScan
        text: storage.isScanning ? "Reading sizes, not contents."
                                 : "A scan measures every folder without looking into your files."
        action: storage.isScanning ? "" : "Scan"
        onActed: storage.scan()
    }
    Item {
        id: body
        anchors { left: parent.left; right: inspector.left; rightMargin: 16; top: tools.bottom; topMargin: 12; bottom: parent.bottom }
        visible: storage.hasScan
        Line { id: listTitle; text: storage.listTitle || ""; isQuiet: true; width: parent.width }
        TreemapItem {
            id: map
            anchors { left: parent.left; top: listTitle.bottom; topMargin: 8; bottom: parent.bottom }
            width: room.showsList ? Math.round(parent.width * 0.54) : parent.width
            visible: room.showsMap
            tiles: storage.tiles
            chosen: storage.chosen || ""
            textSize: Theme.captionSize + 1
            colours: Object.assign({"text": Theme.text, "chosen": Theme.text, "focus": Theme.accent}, Theme.kinds)
            Accessible.role: Accessible.List
            Accessible.name: "Map of the folder. " + currentText
            Accessible.focusable: true
            onChose: key => storage.choose(key)
            onOpened: key => storage.open(key)
            Keys.onPressed: event => room.handle(event)
        }
        RowList {
            id: list
            anchors { left: room.showsMap ? map.right : parent.left; leftMargin: room.showsMap ? 12 : 0; right: parent.right; top: map.top; bottom: parent.bottom }
            visible: room.showsList
            name: room.isSearching ? "What the search found" : "What is in the folder"
            model: storage.rows
            onChose: row => storage.choose(storage.rows.at(row).key)
            onOpened: row => storage.open(storage.rows.at(row).key)
            Keys.onPressed: event => room.handle(event)
            delegate: FigureRow {
                id: row
                required property int index
                required property var model
                width: list.width - 8
                title: model.name
                detail: room.isSearching ? model.place : model.kind
                figure: model.size
                fraction: model.fraction
                colour: Theme.kindColour(model.kind)
                isChosen: storage.chosen === model.key
                Accessible.onPressAction: storage.choose(model.key)
                MouseArea {
                    anchors.fill: parent
                    onClicked: {
                        list.forceActiveFocus(Qt.MouseFocusReason)
                        list.currentIndex = row.index
                        storage.choose(row.model.key)
                    }
                    onDoubleClicked: storage.open(row.model.key)
                }
            }
            Line {
                anchors { left: parent.left; right: parent.right; top: parent.top; margins: 12 }
                visible: list.count === 0
                text: room.isSearching ? "Nothing in the scan is called that." : "This folder is empty, or holds only small things."
                isQuiet: true
                wrapMode: Text.Wrap
            }
        }
    }
    Inspector {
        id: inspector
        anchors { right: parent.right; top: tools.bottom; topMargin: 12; bottom: parent.bottom }
        width: room.isWide ? 284 : 230
        visible: storage.hasScan
        onAskedToMove: confirm.askAboutChosen()
    }
    ConfirmSheet {
        id: confirm
        property var asked: ({})
        function askAboutChosen() {
            asked = storage.askToMove()
            ask()
        }
        title: "Move “" + (asked.name || "") + "” to the Trash?"
        text: [asked.size + ".", asked.removal, "You can take it back until the Trash is emptied."].filter(t => t).join(" ")
        yes: "Move to Trash"
        onConfirmed: {
            storage.moveToTrash()
            const place = list.visible ? list : map
            place.forceActiveFocus(Qt.OtherFocusReason)
        }
    }
    Picker {
        id: folder
        source: "FolderPicker.qml"
        title: "Choose a drive to scan"
        onPicked: place => storage.selectFolder(place)
        onFailed: house.say("This desktop has no dialog to choose a folder with.")
    }
}
