import QtQuick

// A room that is longer than the window. The keyboard takes what it reaches into sight; where there is nothing to reach,
// the arrow keys scroll.
Flickable {
    id: scroller

    property string name

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

    ReachedInSight { view: scroller }
    ScrollMark { parent: scroller; list: scroller }
}
