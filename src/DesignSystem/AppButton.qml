import QtQuick

// kind: "primary", "quiet" or "destructive". `symbol` is an icon behind the text.
Rectangle {
    id: button

    property string text
    property string symbol
    property string kind: "quiet"
    readonly property bool isHovered: area.containsMouse
    signal clicked

    readonly property color ink: kind === "quiet" ? Theme.text : Theme.accentText
    readonly property color ground: kind === "primary" ? Theme.accent : kind === "destructive" ? Theme.danger : Theme.surface2

    implicitWidth: label.implicitWidth + 28 + (symbol === "" ? 0 : 22)
    implicitHeight: Theme.controlHeight
    radius: Theme.controlRadius
    color: area.pressed ? Qt.darker(ground, 1.12) : area.containsMouse && enabled ? Qt.darker(ground, 1.05) : ground
    border.width: kind === "quiet" ? 1 : 0
    border.color: Theme.line
    opacity: enabled ? 1 : 0.45
    activeFocusOnTab: enabled
    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.focusable: true
    Accessible.onPressAction: press()

    function press() {
        if (enabled)
            clicked()
    }
    // A key that is held presses once.
    Keys.onSpacePressed: event => { if (!event.isAutoRepeat) press() }
    Keys.onReturnPressed: event => { if (!event.isAutoRepeat) press() }
    Keys.onEnterPressed: event => { if (!event.isAutoRepeat) press() }

    Text {
        id: label
        anchors { left: parent.left; leftMargin: 14; verticalCenter: parent.verticalCenter }
        width: parent.width - 28 - (button.symbol === "" ? 0 : 22)
        text: button.text
        textFormat: Text.PlainText
        horizontalAlignment: Text.AlignHCenter
        elide: Text.ElideRight
        color: button.ink
        font.pixelSize: Theme.bodySize
        font.weight: button.kind === "quiet" ? Font.Normal : Font.DemiBold
        Accessible.ignored: true
    }
    Loader {
        anchors { right: parent.right; rightMargin: 8; verticalCenter: parent.verticalCenter }
        active: button.symbol !== ""
        sourceComponent: Icon { name: button.symbol; colour: button.ink }
    }
    MouseArea {
        id: area
        anchors.fill: parent
        hoverEnabled: true
        onClicked: {
            button.forceActiveFocus(Qt.MouseFocusReason)
            button.press()
        }
    }
    FocusFrame { isOn: button.activeFocus }
}
