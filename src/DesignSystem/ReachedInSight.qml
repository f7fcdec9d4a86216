import QtQuick
import QtQuick.Window

// Scrolls a view so far that what the keyboard reaches in it can be seen.
QtObject {
    required property Flickable view
    readonly property Item reached: view.Window.activeFocusItem

    readonly property bool isInside: holds(reached)

    onReachedChanged: if (holds(reached)) show(reached)
    function holds(item) {
        while (item && item !== view.contentItem)
            item = item.parent
        return Boolean(item)
    }
    function show(item) {
        const top = item.mapToItem(view.contentItem, 0, 0).y - 4
        const bottom = top + item.height + 8
        if (top < view.contentY)
            view.contentY = Math.max(view.originY - view.topMargin, top)
        else if (bottom > view.contentY + view.height)
            view.contentY = Math.min(top, bottom - view.height)
    }
}
