import QtQuick
import Hearthkeep.DesignSystem

// The room's headline sentence and its figure.
Column {
    property string title
    property string text
    property bool isTrouble: false

    spacing: 4
    Line { width: parent.width; text: parent.title; font.pixelSize: Theme.titleSize; font.weight: Font.DemiBold; wrapMode: Text.Wrap; maximumLineCount: 2; Accessible.role: Accessible.Heading }
    Line { width: parent.width; text: parent.text; isQuiet: !parent.isTrouble; color: parent.isTrouble ? Theme.danger : Theme.textQuiet; font.weight: parent.isTrouble ? Font.DemiBold : Font.Normal; visible: text !== ""; wrapMode: Text.WordWrap; maximumLineCount: 2 }
}
