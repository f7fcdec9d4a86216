import QtQuick
import QtQuick.Shapes

// Our own line icons on a grid of 20, drawn in the colour of what they stand beside.
Shape {
    property string name
    property color colour: Theme.textQuiet

    readonly property var drawings: ({
        "home": "M3 9.5 L10 3.5 L17 9.5 M5 8.5 V16.5 H15 V8.5 M8.5 16.5 V12 H11.5 V16.5",
        "disk": "M3.5 5 H16.5 V15 H3.5 Z M3.5 11.5 H16.5 M13 13.3 H14.5",
        "broom": "M14.5 3 L10 9 M6.5 8.5 L12 12 L10 17 L3.5 14 Z M6.5 15.3 L8 12",
        "apps": "M4 4 H8.5 V8.5 H4 Z M11.5 4 H16 V8.5 H11.5 Z M4 11.5 H8.5 V16 H4 Z M11.5 11.5 H16 V16 H11.5 Z",
        "memory": "M5.5 5.5 H14.5 V14.5 H5.5 Z M8 5.5 V3 M12 5.5 V3 M8 17 V14.5 M12 17 V14.5 M5.5 8 H3 M5.5 12 H3 M17 8 H14.5 M17 12 H14.5",
        "ports": "M10 3.5 V8 M10 8 L5 12 V15 M10 8 L15 12 V15 M3.5 15 H6.5 V17 H3.5 Z M13.5 15 H16.5 V17 H13.5 Z M8.5 2.5 H11.5 V4.5 H8.5 Z",
        "help": "M7.5 8 Q7.5 5.5 10 5.5 Q12.5 5.5 12.5 7.8 Q12.5 9.3 10 10.6 V12.2 M10 14.5 V15 M10 2.5 A7.5 7.5 0 1 1 9.99 2.5",
        "down": "M5.5 8 L10 12.5 L14.5 8",
        "right": "M8 5.5 L12.5 10 L8 14.5",
        "check": "M4.5 10.5 L8.5 14.5 L15.5 6",
        "safe": "M4.5 10.5 L8.5 14.5 L15.5 6",
        "caution": "M10 3.5 L17.5 16.5 H2.5 Z M10 8.5 V12 M10 14 V14.3",
        "keep": "M5.5 9 H14.5 V16 H5.5 Z M7.5 9 V6.5 Q7.5 4 10 4 Q12.5 4 12.5 6.5 V9"
    })

    implicitWidth: 20
    implicitHeight: 20
    ShapePath {
        strokeColor: colour
        strokeWidth: 1.5
        fillColor: "transparent"
        capStyle: ShapePath.RoundCap
        joinStyle: ShapePath.RoundJoin
        PathSvg { path: drawings[name] || "" }
    }
}
