import QtQuick

// Something to tick, with its size and why. Space ticks it, Enter shows what is behind it.
Item {
    id: row

    property string title
    property string reason
    property string size
    property string detail
    property bool isTicked: true
    property bool canTick: true
    property bool canOpen: false
    property bool isOpen: false
    signal toggled(bool isTicked)
    signal opened

    implicitHeight: Math.max(56, Math.max(texts.implicitHeight, figure.implicitHeight) + 16)
    activeFocusOnTab: true
    Accessible.role: canTick ? Accessible.CheckBox : Accessible.ListItem
    Accessible.name: title + ", " + size + ". " + reason + (detail === "" ? "" : " " + detail)
    Accessible.checkable: canTick
    Accessible.checked: canTick && isTicked
    Accessible.focusable: true
    Accessible.onPressAction: act()
    Accessible.onToggleAction: act()

    function act() {
        if (canTick)
            toggled(!isTicked)
        else if (canOpen)
            opened()
    }
    Keys.onSpacePressed: act()
    Keys.onReturnPressed: if (canOpen) opened()
    Keys.onEnterPressed: if (canOpen) opened()

    Rectangle {
        anchors.fill: parent
        radius: Theme.controlRadius
        color: area.containsMouse ? Theme.hover : "transparent"
    }
    MouseArea {
        id: area
        anchors.fill: parent
        hoverEnabled: true
        onClicked: {
            row.forceActiveFocus(Qt.MouseFocusReason)
            row.act()
        }
    }
    Rectangle {
        id: box
        visible: row.canTick
        anchors { left: parent.left; leftMargin: 12; verticalCenter: parent.verticalCenter }
        width: 18
        height: 18
        radius: 4
        color: row.isTicked ? Theme.accent : Theme.surface2
        border.width: 1
        border.color: row.isTicked ? Theme.accent : Theme.textQuiet
        Icon {
            anchors.centerIn: parent
            scale: 0.8
            visible: row.isTicked
            name: "check"
            colour: Theme.accentText
        }
    }
    Column {
        id: texts
        anchors { left: parent.left; leftMargin: row.canTick ? 44 : 12; right: figure.left; rightMargin: 16; verticalCenter: parent.verticalCenter }
        spacing: 2
        Line { width: parent.width; text: row.title; font.weight: Font.DemiBold; Accessible.ignored: true }
        Line { width: parent.width; text: row.reason; isQuiet: true; wrapMode: Text.Wrap; maximumLineCount: 3; font.pixelSize: Theme.captionSize + 1; Accessible.ignored: true }
    }
    Column {
        id: figure
        anchors { right: disclosure.left; rightMargin: 8; verticalCenter: parent.verticalCenter }
        width: Math.min(240, Math.max(sizeLine.implicitWidth, detailLine.implicitWidth))
        spacing: 2
        Line { id: sizeLine; width: parent.width; horizontalAlignment: Text.AlignRight; text: row.size; font.weight: Font.DemiBold; Accessible.ignored: true }
        Line { id: detailLine; width: parent.width; horizontalAlignment: Text.AlignRight; text: row.detail; isQuiet: true; wrapMode: Text.Wrap; maximumLineCount: 3; font.pixelSize: Theme.captionSize; visible: text !== ""; Accessible.ignored: true }
    }
    Item {
        id: disclosure
        anchors { right: parent.right; rightMargin: 4; top: parent.top; bottom: parent.bottom }
        width: row.canOpen ? 32 : 8
        Icon {
            anchors.centerIn: parent
            visible: row.canOpen
            name: row.isOpen ? "down" : "right"
        }
        MouseArea {
            anchors.fill: parent
            enabled: row.canOpen
            onClicked: row.opened()
        }
    }
    FocusFrame { isOn: row.activeFocus; anchors.margins: 0 }
}
