import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// A titled section of a screen.
Rectangle {
    id: card
    property string title
    default property alias content: body.data

    Layout.fillWidth: true
    implicitHeight: body.implicitHeight + 24
    radius: 12
    color: "#ffffff"
    border.color: "#e0e0e6"

    ColumnLayout {
        id: body
        x: 12
        y: 12
        width: card.width - 24
        spacing: 8

        Label {
            visible: card.title.length > 0
            text: card.title
            font.pixelSize: 16
            font.bold: true
            wrapMode: Text.Wrap
            Layout.fillWidth: true
        }
    }
}
