import QtQuick

// A piece of text. Names may hold anything: it is never read as markup.
Text {
    property bool isQuiet: false

    textFormat: Text.PlainText
    color: isQuiet ? Theme.textQuiet : Theme.text
    font.pixelSize: Theme.bodySize
    elide: Text.ElideRight
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
