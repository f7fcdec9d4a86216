import QtQuick

// A line of a list: a name, what is said of it, and a figure.
Item {
    id: row

    property string title
    property string detail
    property string figure
    property string badge
    property string tone: "neutral"
    property real fraction: -1
    property color colour: Theme.accent
    property bool isChosen: false

    implicitHeight: (detail === "" ? 38 : 50) * Theme.scale
    Accessible.role: Accessible.ListItem
    Accessible.selected: isChosen
    Accessible.name: [title, figure, detail, badge].filter(word => word !== "").join(", ")

    Rectangle {
        anchors.fill: parent
        radius: Theme.controlRadius
        color: row.isChosen ? Theme.hover : "transparent"
    }
    Rectangle {
        visible: row.fraction >= 0
        anchors { left: parent.left; leftMargin: 10; verticalCenter: parent.verticalCenter }
        width: 4
        height: parent.height - 16
        radius: 2
        color: row.colour
    }
    Column {
        anchors { left: parent.left; leftMargin: row.fraction >= 0 ? 24 : 12; right: mark.visible ? mark.left : figureText.left; rightMargin: 12; verticalCenter: parent.verticalCenter }
        spacing: 1
        Line { width: parent.width; text: row.title; elide: Text.ElideMiddle; Accessible.ignored: true }
        Line { width: parent.width; text: row.detail; isQuiet: true; elide: Text.ElideMiddle; font.pixelSize: Theme.captionSize; visible: text !== ""; Accessible.ignored: true }
    }
    Badge {
        id: mark
        anchors { right: figureText.left; rightMargin: 12; verticalCenter: parent.verticalCenter }
        text: row.badge
        Accessible.ignored: true
        tone: row.tone
    }
    Line {
        id: figureText
        anchors { right: parent.right; rightMargin: 12; verticalCenter: parent.verticalCenter }
        text: row.figure
        Accessible.ignored: true
    }
}
