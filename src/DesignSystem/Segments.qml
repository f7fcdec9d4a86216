import QtQuick

// A choice of a few.
Row {
    id: segments

    property var names: []
    property int current: 0
    signal picked(int index)

    spacing: -1
    Repeater {
        model: segments.names
        Rectangle {
            id: segment
            required property int index
            required property string modelData
            readonly property bool isOn: index === segments.current

            width: label.implicitWidth + 26
            height: Theme.controlHeight
            color: isOn ? Theme.hover : Theme.surface2
            border.width: 1
            border.color: Theme.line
            activeFocusOnTab: true
            Accessible.role: Accessible.RadioButton
            Accessible.name: modelData
            Accessible.checkable: true
            Accessible.checked: isOn
            Accessible.onPressAction: segments.picked(index)
            Keys.onSpacePressed: segments.picked(index)
            Keys.onReturnPressed: segments.picked(index)
            Keys.onEnterPressed: segments.picked(index)
            Line {
                id: label
                anchors.centerIn: parent
                text: segment.modelData
                font.weight: segment.isOn ? Font.DemiBold : Font.Normal
                Accessible.ignored: true
            }
            MouseArea {
                anchors.fill: parent
                onClicked: {
                    segment.forceActiveFocus(Qt.MouseFocusReason)
                    segments.picked(segment.index)
                }
            }
            FocusFrame { isOn: segment.activeFocus; anchors.margins: 0; z: 1 }
        }
    }
}
