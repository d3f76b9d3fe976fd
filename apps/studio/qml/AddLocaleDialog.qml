import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// Adds a locale from the store's list, optionally starting from another locale's texts.
Dialog {
    id: dialog
    required property var theme
    objectName: "addLocaleDialog"
    title: "Add a locale"
    modal: true
    anchors.centerIn: parent
    width: 420
    standardButtons: Dialog.Ok | Dialog.Cancel
    palette.window: theme.surface
    palette.windowText: theme.text

    onOpened: code.forceActiveFocus()
    onAccepted: studio.addLocale(code.currentText, copyFrom.currentIndex > 0 ? copyFrom.currentText : "")

    ColumnLayout {
        anchors.fill: parent
        spacing: 8
        Label { text: "Locale"; color: dialog.theme.text }
        ComboBox {
            id: code
            objectName: "addLocaleCode"
            Layout.fillWidth: true
            model: studio.addableLocales
            editable: true
            Accessible.name: "Locale code"
        }
        Label { text: "Start with the texts of"; color: dialog.theme.text }
        ComboBox {
            id: copyFrom
            objectName: "addLocaleCopyFrom"
            Layout.fillWidth: true
            model: ["Nothing (empty fields)"].concat(studio.localeCodes)
            Accessible.name: "Copy texts from"
        }
        Label {
            Layout.fillWidth: true
            wrapMode: Text.Wrap
            color: dialog.theme.secondaryText
            font.pixelSize: 12
            text: "The locale's folder is created when you save its first text."
        }
    }
}
