import QtQuick

// A list that the arrow keys go through. Enter opens the current row, Space and a click choose it.
ListView {
    id: rows

    property string name
    signal chose(int row)
    signal opened(int row)

    clip: true
    boundsBehavior: Flickable.StopAtBounds
    activeFocusOnTab: true
    keyNavigationEnabled: true
    currentIndex: -1
    highlightMoveDuration: 0
    Accessible.role: Accessible.List
    Accessible.name: name

    // Away from a button in a row that isn't the current one any more.
    onCurrentIndexChanged: if (sight.isInside && currentItem) currentItem.forceActiveFocus(Qt.TabFocusReason)
    onCurrentItemChanged: if (activeFocus && currentIndex >= 0) chose(currentIndex)
    onActiveFocusChanged: if (activeFocus && currentIndex < 0 && count > 0) currentIndex = 0
    Keys.onReturnPressed: if (currentIndex >= 0) opened(currentIndex)
    Keys.onEnterPressed: if (currentIndex >= 0) opened(currentIndex)
    Keys.onSpacePressed: if (currentIndex >= 0) chose(currentIndex)
    Keys.onPressed: event => {
        if (event.key === Qt.Key_Home && count > 0) {
            currentIndex = 0
            event.accepted = true
        } else if (event.key === Qt.Key_End && count > 0) {
            currentIndex = count - 1
            event.accepted = true
        }
    }
    highlight: Item {
        z: 2
        FocusFrame { isOn: rows.activeFocus; anchors.margins: 0 }
    }

    ReachedInSight { id: sight; view: rows }
    ScrollMark { parent: rows; list: rows }
}
