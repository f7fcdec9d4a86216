import QtQuick

Rectangle {
    id: field

    // What it says while nobody types in it.
    property string text
    onTextChanged: if (input.text.trim() !== text) input.text = text
    property string placeholder: "Search"
    signal edited(string text)
    signal leftDown
    function begin() {
        input.forceActiveFocus(Qt.ShortcutFocusReason)
        input.selectAll()
    }
    function clear() {
        input.text = ""
        edited("")
    }

    implicitWidth: 260
    implicitHeight: Theme.controlHeight
    radius: Theme.controlRadius
    color: Theme.surface2
    border.width: 1
    border.color: input.activeFocus ? Theme.accent : Theme.line

    TextInput {
        id: input
        anchors { fill: parent; leftMargin: 12; rightMargin: 12 }
        verticalAlignment: TextInput.AlignVCenter
        color: Theme.text
        selectionColor: Theme.accent
        selectedTextColor: Theme.accentText
        font.pixelSize: Theme.bodySize
        clip: true
        activeFocusOnTab: true
        Accessible.role: Accessible.EditableText
        Accessible.name: field.placeholder
        onTextEdited: field.edited(text)
        Keys.onDownPressed: field.leftDown()
        Keys.onEscapePressed: event => {
            event.accepted = text !== ""
            field.clear()
        }
    }
    Line {
        anchors { left: parent.left; leftMargin: 12; verticalCenter: parent.verticalCenter }
        visible: input.text === ""
        text: field.placeholder
        isQuiet: true
        Accessible.ignored: true
    }
}
