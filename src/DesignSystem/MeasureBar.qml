import QtQuick

// How full something is; `inner` is a part of it that is known in more detail.
Rectangle {
    id: bar

    property real fraction: 0
    property real inner: 0
    property string name

    implicitHeight: 10
    radius: 5
    color: Theme.surface2
    border.width: 1
    border.color: Theme.line
    Accessible.role: Accessible.ProgressBar
    Accessible.name: name

    Rectangle {
        width: Math.max(parent.radius * 2, parent.width * Math.min(1, bar.fraction))
        height: parent.height
        radius: parent.radius
        color: bar.fraction > 0.9 ? Theme.danger : Theme.accent
        opacity: 0.45
        visible: bar.fraction > 0
    }
    Rectangle {
        width: Math.max(parent.radius * 2, parent.width * Math.min(1, bar.inner))
        height: parent.height
        radius: parent.radius
        color: bar.fraction > 0.9 ? Theme.danger : Theme.accent
        visible: bar.inner > 0
    }
}
