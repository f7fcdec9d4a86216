import QtQuick

// The way to what is shown. Where it is longer than the room, its end is seen.
ListView {
    id: crumbs

    property alias steps: crumbs.model
    signal picked(string key)

    orientation: ListView.Horizontal
    clip: true
    boundsBehavior: Flickable.StopAtBounds
    interactive: contentWidth > width
    onCountChanged: Qt.callLater(positionViewAtEnd)
    onWidthChanged: Qt.callLater(positionViewAtEnd)
    onContentWidthChanged: Qt.callLater(positionViewAtEnd)
    Accessible.role: Accessible.ToolBar
    Accessible.name: "The way to this folder"
    delegate: Row {
        id: step
        required property int index
        required property string key
        required property string name
        readonly property bool isLast: index === crumbs.count - 1

        Icon { visible: step.index > 0; name: "right"; anchors.verticalCenter: parent.verticalCenter }
        Rectangle {
            width: Math.min(label.implicitWidth, 180) + 16
            height: crumbs.height
            radius: Theme.controlRadius
            color: area.containsMouse && !step.isLast ? Theme.hover : "transparent"
            activeFocusOnTab: true
            Accessible.role: Accessible.Button
            Accessible.name: step.name
            Accessible.onPressAction: crumbs.picked(step.key)
            Keys.onReturnPressed: crumbs.picked(step.key)
            Keys.onEnterPressed: crumbs.picked(step.key)
            Keys.onSpacePressed: crumbs.picked(step.key)
            onActiveFocusChanged: if (activeFocus) crumbs.positionViewAtIndex(step.index, ListView.Contain)
            Line {
                id: label
                anchors { left: parent.left; right: parent.right; margins: 8; verticalCenter: parent.verticalCenter }
                text: step.name
                elide: Text.ElideMiddle
                isQuiet: !step.isLast
                font.weight: step.isLast ? Font.DemiBold : Font.Normal
                Accessible.ignored: true
            }
            MouseArea {
                id: area
                anchors.fill: parent
                hoverEnabled: true
                onClicked: crumbs.picked(step.key)
            }
            FocusFrame { isOn: parent.activeFocus; anchors.margins: 1 }
        }
    }
}
