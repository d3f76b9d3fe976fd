import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// The submission decision, the checklist's progress and its next action (a button that
// shows the field), then what is still open, blockers first.
Rectangle {
    id: panel
    required property var theme
    color: theme.sidebar

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 12
        spacing: 10

        Label {
            objectName: "decision"
            text: studio.decision
            font.pixelSize: 18
            font.bold: true
            color: studio.readyToSubmit ? panel.theme.good : panel.theme.blocker
            wrapMode: Text.Wrap
            Layout.fillWidth: true
        }
        ProgressBar {
            id: bar
            objectName: "progress"
            Layout.fillWidth: true
            from: 0
            to: 1
            value: studio.progress
            background: Rectangle { implicitHeight: 6; radius: 3; color: panel.theme.border }
            contentItem: Item {
                Rectangle {
                    width: bar.visualPosition * parent.width
                    height: parent.height
                    radius: 3
                    color: studio.readyToSubmit ? panel.theme.good : panel.theme.accent
                }
            }
        }
        Label {
            objectName: "progressText"
            text: studio.progressText
            color: panel.theme.secondaryText
        }

        Label {
            // Once nothing stops the submission, what is left only makes the listing better.
            text: studio.readyToSubmit ? "Worth doing" : "Next"
            visible: studio.nextAction.length > 0
            font.bold: true
            color: panel.theme.text
        }
        Button {
            id: next
            objectName: "nextAction"
            visible: studio.nextAction.length > 0
            Layout.fillWidth: true
            focusPolicy: Qt.StrongFocus
            Accessible.name: "Next: " + studio.nextAction
            contentItem: Label {
                text: studio.nextAction
                wrapMode: Text.Wrap
                color: panel.theme.accent
            }
            background: Rectangle {
                radius: 6
                color: next.hovered ? panel.theme.chip : panel.theme.surface
                border.color: next.visualFocus ? panel.theme.accent : panel.theme.border
                border.width: next.visualFocus ? 2 : 1
            }
            onClicked: studio.goToNextAction()
        }

        Label {
            text: "Still open"
            visible: studio.openItems.length > 0
            font.bold: true
            color: panel.theme.text
        }
        ListView {
            objectName: "openItems"
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            spacing: 4
            model: studio.openItems
            ScrollBar.vertical: ScrollBar {}
            delegate: ItemDelegate {
                id: item
                required property var modelData
                width: ListView.view.width
                focusPolicy: Qt.StrongFocus
                Accessible.name: modelData.title + ": " + modelData.detail
                contentItem: ColumnLayout {
                    spacing: 1
                    Label {
                        text: (item.modelData.blocked ? "⛔ " : "○ ") + item.modelData.title
                        color: item.modelData.blocked ? panel.theme.blocker : panel.theme.text
                        elide: Text.ElideRight
                        Layout.fillWidth: true
                    }
                    Label {
                        text: item.modelData.detail
                        color: panel.theme.secondaryText
                        font.pixelSize: 11
                        elide: Text.ElideRight
                        Layout.fillWidth: true
                    }
                }
                background: Rectangle { radius: 5; color: item.hovered || item.visualFocus ? panel.theme.chip : "transparent" }
                onClicked: studio.goTo(modelData.scope, modelData.key)
            }
        }
    }
}
