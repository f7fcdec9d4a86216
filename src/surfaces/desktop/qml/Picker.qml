import QtQuick

// The dialogs for files cost time and memory to load: only when one is asked for.
Loader {
    id: picker

    property string title
    signal picked(url place)
    signal failed

    function open() {
        if (item)
            item.open()
        else if (status === Loader.Error)
            failed()
        else
            active = true
    }
    active: false
    onStatusChanged: if (status === Loader.Error) failed()
    onLoaded: {
        if (title !== "")
            item.title = title
        item.open()
    }
    Connections {
        target: picker.item
        function onAccepted() { picker.picked(picker.item.selectedFolder !== undefined ? picker.item.selectedFolder : picker.item.selectedFile) }
    }
}
