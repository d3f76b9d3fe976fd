import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Dialogs
import QtQuick.Layouts
import QtQuick.Window

// Corvane Studio's main window: the toolbar, the sidebar of locales, the form of the scope
// on screen and the checklist panel; a welcome page until a folder is open.
ApplicationWindow {
    id: window
    objectName: "studioWindow"
    minimumWidth: 1024
    minimumHeight: 640
    visible: false
    title: studio.isOpen ? (studio.hasUnsavedChanges ? "● " : "") + studio.folderName + " — Corvane Studio" : "Corvane Studio"
    color: studioTheme.window

    // Set when the user chose to close without saving, so the second close goes through.
    property bool closeConfirmed: false

    Theme { id: studioTheme; dark: appearance.dark }

    palette.window: studioTheme.window
    palette.windowText: studioTheme.text
    palette.base: studioTheme.surface
    palette.text: studioTheme.text
    palette.button: studioTheme.surface
    palette.buttonText: studioTheme.text
    palette.highlight: studioTheme.accent
    palette.highlightedText: studioTheme.accentText
    palette.placeholderText: studioTheme.secondaryText
    palette.mid: studioTheme.border

    onClosing: close => {
        if (studio.hasUnsavedChanges && !closeConfirmed) {
            close.accepted = false
            unsavedDialog.open()
        }
    }

    // Files changed by other programs show when the user comes back to the window.
    onActiveChanged: if (active && studio.isOpen) studio.checkDisk()

    Shortcut { sequences: [StandardKey.Open]; onActivated: folderDialog.open() }
    Shortcut { sequences: [StandardKey.Save]; enabled: studio.isOpen; onActivated: studio.save() }
    Shortcut { sequence: "Ctrl+Shift+S"; enabled: studio.isOpen; onActivated: studio.saveAll() }
    Shortcut { sequence: "Ctrl+J"; enabled: studio.isOpen; onActivated: studio.goToNextAction() }
    Shortcut { sequence: "Ctrl+Shift+N"; enabled: studio.isOpen; onActivated: addLocaleDialog.open() }
    Shortcut { sequence: "Ctrl+PgDown"; enabled: studio.isOpen; onActivated: studio.selectAdjacentScope(1) }
    Shortcut { sequence: "Ctrl+PgUp"; enabled: studio.isOpen; onActivated: studio.selectAdjacentScope(-1) }

    header: ToolBar {
        background: Rectangle { color: studioTheme.surface; Rectangle { anchors.bottom: parent.bottom; width: parent.width; height: 1; color: studioTheme.border } }
        RowLayout {
            anchors.fill: parent
            anchors.leftMargin: 10
            anchors.rightMargin: 10
            spacing: 6
            Label {
                text: studio.isOpen ? studio.folderName : "Corvane Studio"
                font.bold: true
                font.pixelSize: 15
                color: studioTheme.text
            }
            Label {
                visible: studio.isOpen
                text: studio.storeName
                color: studioTheme.secondaryText
            }
            Item { Layout.fillWidth: true }
            ToolButtonText { objectName: "openButton"; theme: studioTheme; text: "Open…"; onClicked: folderDialog.open() }
            ToolButtonText {
                objectName: "recentButton"
                theme: studioTheme
                text: "Recent"
                enabled: recentFolders.folders.length > 0
                onClicked: recentMenu.popup()
                Menu {
                    id: recentMenu
                    Repeater {
                        model: recentFolders.folders
                        MenuItem { required property string modelData; text: modelData; onTriggered: studio.open(modelData) }
                    }
                }
            }
            ToolButtonText {
                objectName: "discardButton"
                theme: studioTheme
                text: "Discard…"
                enabled: studio.hasUnsavedChanges
                onClicked: discardMenu.popup()
                Menu {
                    id: discardMenu
                    MenuItem { text: "Discard changes to " + studio.currentTitle; enabled: studio.currentHasUnsavedChanges; onTriggered: studio.discardCurrent() }
                    MenuItem { text: "Discard every change"; onTriggered: studio.discardAll() }
                }
            }
            ToolButtonText {
                objectName: "saveButton"
                theme: studioTheme
                text: "Save " + (studio.currentScope === "shared" ? "shared data" : studio.currentScope)
                enabled: studio.currentHasUnsavedChanges
                onClicked: studio.save()
            }
            ToolButtonText {
                objectName: "saveAllButton"
                theme: studioTheme
                primary: studio.hasUnsavedChanges
                text: "Save all"
                enabled: studio.hasUnsavedChanges
                onClicked: studio.saveAll()
            }
        }
    }

    footer: Rectangle {
        height: 26
        color: studioTheme.surface
        Rectangle { width: parent.width; height: 1; color: studioTheme.border }
        Label {
            objectName: "status"
            anchors.verticalCenter: parent.verticalCenter
            anchors.left: parent.left
            anchors.leftMargin: 10
            text: studio.statusText
            color: studioTheme.secondaryText
            font.pixelSize: 12
        }
        Label {
            anchors.verticalCenter: parent.verticalCenter
            anchors.right: parent.right
            anchors.rightMargin: 10
            text: studio.isOpen ? studio.folder : ""
            color: studioTheme.secondaryText
            font.pixelSize: 12
            elide: Text.ElideMiddle
            width: parent.width / 2
            horizontalAlignment: Text.AlignRight
        }
    }

    WelcomePage {
        anchors.fill: parent
        visible: !studio.isOpen
        theme: studioTheme
        onOpenRequested: folderDialog.open()
    }

    RowLayout {
        anchors.fill: parent
        visible: studio.isOpen
        spacing: 0

        Sidebar {
            theme: studioTheme
            Layout.preferredWidth: window.width < 1200 ? 200 : 240
            Layout.fillHeight: true
            onAddLocaleRequested: addLocaleDialog.open()
        }
        Rectangle { Layout.fillHeight: true; width: 1; color: studioTheme.border }

        ColumnLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: 0

            Rectangle {
                objectName: "errorBanner"
                visible: studio.errorText.length > 0
                Layout.fillWidth: true
                implicitHeight: errorRow.implicitHeight + 16
                color: studioTheme.errorBackground
                RowLayout {
                    id: errorRow
                    anchors.fill: parent
                    anchors.margins: 8
                    Label {
                        objectName: "errorText"
                        Layout.fillWidth: true
                        text: studio.errorText
                        color: studioTheme.blocker
                        wrapMode: Text.Wrap
                    }
                    ToolButtonText { theme: studioTheme; text: "Dismiss"; onClicked: studio.dismissError() }
                }
            }

            Label {
                text: studio.currentTitle
                font.pixelSize: 20
                font.bold: true
                color: studioTheme.text
                Layout.margins: 14
                Layout.bottomMargin: 4
            }

            ScrollView {
                id: formScroll
                objectName: "form"
                Layout.fillWidth: true
                Layout.fillHeight: true
                contentWidth: availableWidth
                clip: true

                ColumnLayout {
                    width: formScroll.availableWidth - 28
                    x: 14
                    spacing: 10
                    LayoutMirroring.enabled: studio.currentRightToLeft
                    LayoutMirroring.childrenInherit: true

                    Repeater {
                        id: fieldRepeater
                        model: studio.fields
                        FieldEditor {
                            theme: studioTheme
                            rightToLeft: studio.currentRightToLeft
                            Layout.fillWidth: true
                        }
                    }
                    Item { implicitHeight: 14 }
                }
            }
        }
        Rectangle { Layout.fillHeight: true; width: 1; color: studioTheme.border }

        ChecklistPanel {
            theme: studioTheme
            Layout.preferredWidth: window.width < 1200 ? 260 : 320
            Layout.fillHeight: true
        }
    }

    Connections {
        target: studio
        function onFocusFieldRequested(key) {
            for (let i = 0; i < fieldRepeater.count; ++i) {
                const editor = fieldRepeater.itemAt(i)
                if (editor && editor.key === key) {
                    editor.focusEditor()
                    formScroll.contentItem.contentY = Math.max(0, Math.min(editor.y - 10, formScroll.contentItem.contentHeight - formScroll.height))
                    return
                }
            }
        }
    }

    FolderDialog {
        id: folderDialog
        title: "Open a metadata folder"
        onAccepted: studio.openUrl(selectedFolder)
    }

    AddLocaleDialog { id: addLocaleDialog; theme: studioTheme }
    ConflictDialog { theme: studioTheme }

    Dialog {
        id: unsavedDialog
        objectName: "unsavedDialog"
        title: "Save changes before closing?"
        modal: true
        anchors.centerIn: parent
        width: 560
        palette.window: studioTheme.surface
        palette.windowText: studioTheme.text
        Label {
            width: parent.width
            wrapMode: Text.Wrap
            color: studioTheme.text
            text: "Your edits are not saved yet. Closing without saving loses them."
        }
        footer: DialogButtonBox {
            Button { objectName: "unsavedSave"; text: "Save all and close"; DialogButtonBox.buttonRole: DialogButtonBox.AcceptRole }
            Button { objectName: "unsavedDiscard"; text: "Close without saving"; DialogButtonBox.buttonRole: DialogButtonBox.DestructiveRole }
            Button { objectName: "unsavedCancel"; text: "Cancel"; DialogButtonBox.buttonRole: DialogButtonBox.RejectRole }
            onAccepted: { unsavedDialog.close(); if (studio.saveAll()) { window.closeConfirmed = true; window.close() } }
            onRejected: unsavedDialog.close()
            onClicked: button => {
                if (button.DialogButtonBox.buttonRole === DialogButtonBox.DestructiveRole) {
                    unsavedDialog.close()
                    window.closeConfirmed = true
                    window.close()
                }
            }
        }
    }
}
