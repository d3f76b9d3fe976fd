import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// What the window shows before a folder is open: how to start, and the recent folders.
Rectangle {
    id: page
    required property var theme
    signal openRequested()
    color: theme.window

    ColumnLayout {
        anchors.centerIn: parent
        width: Math.min(parent.width - 80, 560)
        spacing: 12

        Label { text: "Corvane Studio"; font.pixelSize: 28; font.bold: true; color: page.theme.text }
        Label {
            Layout.fillWidth: true
            wrapMode: Text.Wrap
            color: page.theme.secondaryText
            text: "Edit an app's store listing with every field checked as you type. Open a metadata folder (one folder per locale) to begin."
        }
        Label {
            objectName: "welcomeError"
            visible: studio.errorText.length > 0
            Layout.fillWidth: true
            wrapMode: Text.Wrap
            color: page.theme.blocker
            text: studio.errorText
        }
        ToolButtonText {
            objectName: "welcomeOpen"
            theme: page.theme
            primary: true
            text: "Open a metadata folder…"
            onClicked: page.openRequested()
        }
        Label { visible: recentFolders.folders.length > 0; text: "Recent folders"; font.bold: true; color: page.theme.text }
        Repeater {
            model: recentFolders.folders
            ToolButtonText {
                required property string modelData
                theme: page.theme
                text: modelData
                Layout.fillWidth: true
                onClicked: studio.open(modelData)
            }
        }
    }
}
