import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// One field of the rule-language screen: its editor, its live verdict and its declaration.
ColumnLayout {
    id: field
    property string title
    property string value
    property var result: ({})
    property string syntax
    signal edited(string text)

    function colorOf(name) {
        return ({ green: "#2e7d32", red: "#c62828", orange: "#e65100", blue: "#1565c0" })[name] || "#444444";
    }

    Layout.fillWidth: true
    spacing: 4

    Label { text: field.title; font.bold: true }
    RowLayout {
        Layout.fillWidth: true
        TextField {
            objectName: field.objectName + "Field"
            placeholderText: "Enter " + field.title.toLowerCase()
            text: field.value
            onTextEdited: field.edited(text)
            Layout.fillWidth: true
        }
        Symbol { name: field.result.symbol || "" }
    }
    Label {
        objectName: field.objectName + "Message"
        text: field.result.message || ""
        color: field.colorOf(field.result.color)
        wrapMode: Text.Wrap
        Layout.fillWidth: true
    }
    Label {
        text: field.syntax
        font.family: "DejaVu Sans Mono"
        font.pixelSize: 11
        color: "#6e6e73"
        wrapMode: Text.Wrap
        Layout.fillWidth: true
    }
}
