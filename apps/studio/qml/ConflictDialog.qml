import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// Files that changed on disk under unsaved edits: for each, the file's text beside the
// edit, and the choice of which to keep. Nothing is overwritten until the user chooses.
Dialog {
    id: dialog
    required property var theme
    objectName: "conflictDialog"
    title: "Changed on disk"
    modal: true
    anchors.centerIn: parent
    width: Math.min(parent.width - 40, 860)
    height: Math.min(parent.height - 40, implicitHeight)
    visible: studio.conflicts.length > 0
    closePolicy: Popup.NoAutoClose
    palette.window: theme.surface
    palette.windowText: theme.text

    ColumnLayout {
        anchors.fill: parent
        spacing: 10
        Label {
            Layout.fillWidth: true
            wrapMode: Text.Wrap
            color: dialog.theme.text
            text: "These files were changed by another program since they were opened. Nothing has been written. Choose which text to keep for each."
        }
        ListView {
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.preferredHeight: contentHeight
            clip: true
            spacing: 14
            model: studio.conflicts
            delegate: ColumnLayout {
                id: conflict
                required property var modelData
                required property int index
                width: ListView.view.width
                spacing: 6
                Label {
                    text: conflict.modelData.label + " · " + conflict.modelData.file
                    font.bold: true
                    color: dialog.theme.text
                }
                RowLayout {
                    Layout.fillWidth: true
                    spacing: 10
                    Repeater {
                        model: [
                            { heading: "On disk now", body: conflict.modelData.fileGone ? "(the file was deleted)" : conflict.modelData.fileText, name: "fileText" },
                            { heading: "Your edit", body: conflict.modelData.editedText, name: "editedText" }
                        ]
                        ColumnLayout {
                            id: side
                            required property var modelData
                            Layout.fillWidth: true
                            Layout.preferredWidth: 1
                            Label { text: side.modelData.heading; color: dialog.theme.secondaryText; font.pixelSize: 12 }
                            Rectangle {
                                Layout.fillWidth: true
                                Layout.preferredHeight: Math.min(body.implicitHeight + 12, 160)
                                radius: 5
                                color: dialog.theme.window
                                border.color: dialog.theme.border
                                clip: true
                                Label {
                                    id: body
                                    objectName: "conflict." + conflict.index + "." + side.modelData.name
                                    anchors.fill: parent
                                    anchors.margins: 6
                                    text: side.modelData.body
                                    wrapMode: Text.Wrap
                                    color: dialog.theme.text
                                }
                            }
                        }
                    }
                }
                RowLayout {
                    ToolButtonText {
                        objectName: "conflict." + conflict.index + ".keepFile"
                        theme: dialog.theme
                        text: "Keep the file's text"
                        onClicked: studio.keepFile(conflict.index)
                    }
                    ToolButtonText {
                        objectName: "conflict." + conflict.index + ".keepEdit"
                        theme: dialog.theme
                        primary: true
                        text: "Keep my edit"
                        onClicked: studio.keepEdited(conflict.index)
                    }
                }
            }
        }
    }
}
