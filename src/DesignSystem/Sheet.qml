import QtQuick

// Something over the window that wants an answer first. Escape closes it, and the keyboard goes back to where it was.
FocusScope {
    id: sheet

    property string title
    property string text
    default property alias content: content.data
    property alias buttons: buttons.data
    property Item before: null
    property real widest: 480

    anchors.fill: parent
    visible: false
    z: 100
    Accessible.role: Accessible.Dialog
    Accessible.name: title

    function open(first) {
        before = Window.activeFocusItem
        parent = Window.contentItem
        visible = true
        Window.window.question = sheet
        forceActiveFocus(Qt.PopupFocusReason)
        first.forceActiveFocus(Qt.PopupFocusReason)
    }
    function close() {
        visible = false
        Window.window.question = null
        if (before && before.visible && before !== Window.contentItem)
            before.forceActiveFocus(Qt.PopupFocusReason)
        else if (Window.window.go)
            Window.window.go(-1)
        before = null
    }
    Keys.onEscapePressed: close()

    Rectangle {
        anchors.fill: parent
        color: "#000000"
        opacity: 0.4
    }
    MouseArea {
        anchors.fill: parent
        hoverEnabled: true
        onClicked: sheet.close()
        onWheel: wheel => { wheel.accepted = true }
    }
    Rectangle {
        anchors.centerIn: parent
        width: Math.min(sheet.widest, parent.width - 48)
        height: all.implicitHeight + 48
        radius: Theme.cardRadius
        color: Theme.surface1
        border.width: 1
        border.color: Theme.line
        MouseArea { anchors.fill: parent }
        Column {
            id: all
            anchors { left: parent.left; right: parent.right; top: parent.top; margins: 24 }
            spacing: 16
            SectionTitle { width: parent.width; text: sheet.title; wrapMode: Text.Wrap; maximumLineCount: 3 }
            Line { width: parent.width; text: sheet.text; visible: text !== ""; wrapMode: Text.Wrap; isQuiet: true; elide: Text.ElideNone }
            Column {
                id: content
                width: parent.width
                spacing: 8
                visible: children.length > 0
            }
            Row {
                id: buttons
                anchors.right: parent.right
                spacing: 8
            }
        }
    }
}
