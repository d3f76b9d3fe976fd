import QtQuick
import QtQuick.Controls.Basic

// A small rounded count, such as a locale's blockers.
Rectangle {
    id: badge
    property int count: 0
    property color tone: "gray"
    property string what: ""
    property color textColor: "white"

    visible: count > 0
    implicitWidth: Math.max(20, label.implicitWidth + 10)
    implicitHeight: 18
    radius: 9
    color: tone
    Accessible.name: count + " " + what

    Label {
        id: label
        anchors.centerIn: parent
        text: badge.count
        color: badge.textColor
        font.pixelSize: 11
        font.bold: true
    }
}
