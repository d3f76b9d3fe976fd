import QtQuick
import QtQuick.Controls.Basic

// A named symbol drawn as its glyph, preferring the colour emoji font.
Label {
    property string name
    text: symbols.glyph(name)
    font.family: "Noto Color Emoji"
    font.pixelSize: 18
}
