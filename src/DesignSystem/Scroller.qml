import QtQuick

// A room that is longer than the window. The keyboard takes what it reaches into sight; where there is nothing to reach,
// the arrow keys scroll.
Flickable {
    id: scroller

    property string name
    readonly property Item reached: Window.activeFocusItem

    clip: true
    // Room for the mark, and for the frame of what has the keyboard.
    contentWidth: width - 14
    topMargin: 3
    bottomMargin: 3
    flickableDirection: Flickable.VerticalFlick
    boundsBehavior: Flickable.StopAtBounds
    activeFocusOnTab: contentHeight > height
    Accessible.role: Accessible.Pane
    Accessible.name: name
    onReachedChanged: {
        for (let item = reached; item; item = item.parent) {
            if (item === contentItem) {
                show(reached)
                return
            }
        }
    }

    function show(item) {
        const top = item.mapToItem(contentItem, 0, 0).y - 4
        const bottom = top + item.height + 8
        if (top < contentY)
            contentY = Math.max(-topMargin, top)
        else if (bottom > contentY + height)
            contentY = Math.min(top, bottom - height)
    }
    function scroll(way) {
        contentY = Math.max(-topMargin, Math.min(contentHeight - height + bottomMargin, contentY + way))
    }
    Keys.onUpPressed: scroll(-48)
    Keys.onDownPressed: scroll(48)
    Keys.onPressed: event => {
        if (event.key === Qt.Key_PageUp)
            scroll(-height * 0.9)
        else if (event.key === Qt.Key_PageDown)
            scroll(height * 0.9)
        else if (event.key === Qt.Key_Home)
            scroll(-contentHeight)
        else if (event.key === Qt.Key_End)
            scroll(contentHeight)
        else
            return
        event.accepted = true
    }

    ScrollMark { parent: scroller; list: scroller }
}
