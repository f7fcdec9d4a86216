import QtQuick
import Hearthkeep.DesignSystem

Scroller {
    id: room

    Component.onCompleted: ports.enter()
    Component.onDestruction: ports.leave()

    contentHeight: content.height
    name: "Ports & Projects"

    Column {
        id: content
        width: parent.width
        spacing: 12
        Item {
            width: parent.width
            height: Math.max(head.height, choose.height)
            RoomHead {
                id: head
                anchors { left: parent.left; right: choose.left; rightMargin: 16 }
                title: "Ports & Projects"
                text: ports.codeFolder ? "Code folder: " + ports.codeFolder : "No code folder is chosen yet."
            }
            AppButton {
                id: choose
                anchors.right: parent.right
                text: ports.codeFolder ? "Change Code Folder…" : "Choose Code Folder…"
                onClicked: folder.open()
            }
        }
        ListSection { width: parent.width; title: "Listening"; empty: ports.hasSample ? "No local servers running." : "Looking…"; rows: ports.ports }
        ListSection { width: parent.width; title: "Projects"; empty: ports.codeFolder ? "No projects are known." : "Ports & Projects and Clean's build folders look only inside the code folder."; rows: ports.projects }
    }
    Picker {
        id: folder
        source: "FolderPicker.qml"
        title: "Choose the folder you keep your code in"
        onPicked: place => ports.chooseCodeFolder(place)
        onFailed: house.say("This desktop has no dialog to choose a folder with.")
    }
}
