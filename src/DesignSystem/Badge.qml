import QtQuick

// A word with a shape: what it says isn't told by colour alone.
Rectangle {
    property alias text: label.text
    property string tone: "neutral"
    property string symbol

    visible: text !== ""
    implicitWidth: label.implicitWidth + 14 + (symbol === "" ? 0 : 18)
    implicitHeight: label.implicitHeight + 5
    radius: height / 2
    color: "transparent"
    border.width: 1
    border.color: Theme.toneColour(tone)
    Accessible.role: Accessible.StaticText
    Accessible.name: text

    Loader {
        anchors { left: parent.left; leftMargin: 5; verticalCenter: parent.verticalCenter }
        active: parent.symbol !== ""
        scale: 0.75
        sourceComponent: Icon { name: symbol; colour: Theme.toneColour(tone) }
    }
    Line {
        id: label
        anchors { right: parent.right; rightMargin: 7; verticalCenter: parent.verticalCenter }
        color: Theme.toneColour(parent.tone)
        font.pixelSize: Theme.captionSize
        Accessible.ignored: true
    }
}
