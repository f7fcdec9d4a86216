pragma Singleton
import QtQuick

// Colours by meaning, sizes and the type. Warm paper by day, deep ink-blue by night: as the desktop has it.
QtObject {
    readonly property bool isDark: appearance.isDark

    readonly property color surface0: isDark ? "#12171f" : "#f6f1e7"
    readonly property color surface1: isDark ? "#1a212c" : "#fdfaf3"
    readonly property color surface2: isDark ? "#242d3b" : "#ffffff"
    readonly property color line: isDark ? "#36425a" : "#ded4c0"
    readonly property color text: isDark ? "#f0ece2" : "#26221b"
    readonly property color textQuiet: isDark ? "#a9b2c3" : "#665d4d"
    readonly property color accent: isDark ? "#7fb4e8" : "#1d5f96"
    readonly property color accentText: isDark ? "#0d1620" : "#ffffff"
    readonly property color safe: isDark ? "#7ecb94" : "#226b3a"
    readonly property color caution: isDark ? "#e8bb62" : "#855500"
    readonly property color keep: isDark ? "#a9b2c3" : "#5b5446"
    readonly property color danger: isDark ? "#f09a8c" : "#a3281a"
    readonly property color hover: isDark ? "#2b3546" : "#efe7d6"

    readonly property var kinds: isDark ? ({
        "Cache": "#3f6b52", "Dependencies": "#6a5a2e", "Build files": "#7a4f2c", "Trash": "#5a5560", "App": "#345f8a",
        "App data": "#4f5a92", "Developer": "#6d4a7e", "Your files": "#2f6f73", "System": "#4a5262", "Other": "#565049"
    }) : ({
        "Cache": "#bfe0c8", "Dependencies": "#eadba6", "Build files": "#f1cba6", "Trash": "#d9d4dd", "App": "#b9d5f0",
        "App data": "#c8cdf0", "Developer": "#e0c6ea", "Your files": "#b5dfe0", "System": "#d2d6de", "Other": "#e0dace"
    })
    function kindColour(kind) {
        return kinds[kind] === undefined ? kinds["Other"] : kinds[kind]
    }
    function toneColour(tone) {
        switch (tone) {
        case "safe":
        case "good":
            return safe
        case "caution":
        case "attention":
            return caution
        case "action":
        case "danger":
            return danger
        case "keep":
            return keep
        }
        return textQuiet
    }

    readonly property real scale: appearance.textScale
    readonly property int titleSize: 24 * scale
    readonly property int headlineSize: 16 * scale
    readonly property int bodySize: 14 * scale
    readonly property int captionSize: 12 * scale
    readonly property int cardRadius: 10
    readonly property int controlRadius: 6
    readonly property int controlHeight: 34 * scale
    readonly property int motion: appearance.hasMotion ? 180 : 0
}
