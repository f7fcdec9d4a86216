import QtQuick

// One sentence and one thing to do.
Column {
    id: state

    property string text
    property string action
    signal acted

    spacing: 16
    Line {
        anchors.horizontalCenter: parent.horizontalCenter
        width: Math.min(implicitWidth, 520)
        text: state.text
        isQuiet: true
        wrapMode: Text.WordWrap
        horizontalAlignment: Text.AlignHCenter
        font.pixelSize: Theme.headlineSize
    }
    AppButton {
        anchors.horizontalCenter: parent.horizontalCenter
        visible: state.action !== ""
        text: state.action
        kind: "primary"
        onClicked: state.acted()
    }
}
