import QtQuick

// The editor's colours in the light and the dark appearance, and the verdict colours the
// library names ("green", "red", "orange", "blue").
QtObject {
    property bool dark: false

    readonly property color window: dark ? "#1e1f22" : "#f5f5f7"
    readonly property color surface: dark ? "#2b2d31" : "#ffffff"
    readonly property color sidebar: dark ? "#232428" : "#ececf0"
    readonly property color border: dark ? "#3d4046" : "#d2d2d7"
    readonly property color text: dark ? "#ececf0" : "#1d1d1f"
    readonly property color secondaryText: dark ? "#a8abb3" : "#6e6e73"
    readonly property color accent: dark ? "#5aa9ff" : "#0a66d8"
    readonly property color accentText: dark ? "#0b1a2e" : "#ffffff"
    readonly property color badgeText: dark ? "#1e1f22" : "#ffffff"
    readonly property color selection: dark ? "#34465e" : "#d6e6fb"
    readonly property color unsaved: dark ? "#ffb74d" : "#c25e00"
    readonly property color blocker: dark ? "#ef9a9a" : "#c62828"
    readonly property color risk: dark ? "#ffb74d" : "#b45309"
    readonly property color good: dark ? "#81c784" : "#2e7d32"
    readonly property color chip: dark ? "#383b42" : "#e8eefb"
    readonly property color errorBackground: dark ? "#4a2326" : "#fdecea"

    function verdictColor(name) {
        switch (name) {
        case "green": return good
        case "red": return blocker
        case "orange": return risk
        case "blue": return accent
        default: return secondaryText
        }
    }
}
