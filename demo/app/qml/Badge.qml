import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// One feature badge of the showcase header: a symbol over a short caption.
Rectangle {
    id: badge
    property string symbol
    property string caption

    Layout.fillWidth: true
    Layout.preferredWidth: 1
    implicitHeight: column.implicitHeight + 16
    radius: 10
    color: "#e8f0fe"

    Column {
        id: column
        anchors.centerIn: parent
        width: badge.width - 12
        spacing: 4

        Symbol {
            anchors.horizontalCenter: parent.horizontalCenter
            name: badge.symbol
            font.pixelSize: 22
        }
        Label {
            width: parent.width
            text: badge.caption
            horizontalAlignment: Text.AlignHCenter
            wrapMode: Text.Wrap
            font.pixelSize: 12
            font.bold: true
            color: "#1a4fa0"
        }
    }
}
