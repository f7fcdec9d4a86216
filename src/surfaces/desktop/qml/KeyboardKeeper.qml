import QtQuick

// A button may go, or end its service, because it was pressed. Then the keyboard goes on to what comes next, instead of
// staying with something that nobody sees.
QtObject {
    id: keeper

    required property var window
    readonly property Item holder: window.activeFocusItem
    property Item last: null
    property Connections hiding: Connections {
        target: keeper.last
        function onVisibleChanged() { Qt.callLater(keeper.keep) }
    }

    onHolderChanged: {
        if (!isLost(holder))
            last = holder
        Qt.callLater(keep)
    }
    function isLost(item) {
        return !item || !item.visible || !item.enabled || item instanceof FocusScope || item instanceof Loader
    }
    function keep() {
        if (!last || window.question || !window.active || !isLost(holder))
            return
        const next = last.nextItemInFocusChain(true)
        if (isLost(next))
            window.go(-1)
        else
            next.forceActiveFocus(Qt.OtherFocusReason)
    }
}
