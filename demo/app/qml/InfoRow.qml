import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// A label and its live value, side by side.
RowLayout {
    property alias label: name.text
    property alias value: shown.text
    property alias valueItem: shown

    Layout.fillWidth: true
    spacing: 8

    Label {
        id: name
        font.bold: true
        Layout.preferredWidth: 110
    }
    Label {
        id: shown
        wrapMode: Text.Wrap
        Layout.fillWidth: true
    }
}
