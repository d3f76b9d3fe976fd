import QtQuick
import QtQuick.Controls.Basic

// A flat toolbar button with a text label in the window's colours.
Button {
    id: control
    property var theme
    property bool primary: false

    flat: !primary
    focusPolicy: Qt.StrongFocus
    contentItem: Label {
        text: control.text
        color: control.primary ? control.theme.accentText : (control.enabled ? control.theme.text : control.theme.secondaryText)
        horizontalAlignment: Text.AlignHCenter
        verticalAlignment: Text.AlignVCenter
        elide: Text.ElideRight
    }
    background: Rectangle {
        implicitHeight: 30
        radius: 6
        color: control.primary ? control.theme.accent
             : (control.down ? control.theme.selection : (control.hovered ? control.theme.chip : "transparent"))
        border.color: control.visualFocus ? control.theme.accent : (control.primary ? control.theme.accent : control.theme.border)
        border.width: control.visualFocus ? 2 : 1
    }
}
