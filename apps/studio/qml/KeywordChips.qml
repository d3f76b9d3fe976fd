import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Corvane.Studio

// Keywords as chips in a flow layout. Enter or a comma adds what is typed; a chip's ✕, or
// Delete on a focused chip, removes it; Ctrl+Left and Ctrl+Right move a focused chip.
ColumnLayout {
    id: chips
    required property var theme
    required property string key
    required property var keywords
    required property int remaining

    function focusInput() { input.forceActiveFocus() }

    spacing: 6

    FlowLayout {
        objectName: chips.key + ".chips"
        Layout.fillWidth: true
        spacing: 6

        Repeater {
            model: chips.keywords
            Rectangle {
                id: chip
                required property string modelData
                required property int index
                objectName: chips.key + ".chip." + index
                activeFocusOnTab: true
                implicitWidth: row.implicitWidth + 16
                implicitHeight: 28
                radius: 14
                color: activeFocus ? chips.theme.selection : chips.theme.chip
                border.color: activeFocus ? chips.theme.accent : chips.theme.border
                Accessible.role: Accessible.Button
                Accessible.name: "Keyword " + modelData + ". Delete removes it, Control and the arrow keys move it."
                Keys.onDeletePressed: studio.removeKeyword(chips.key, index)
                Keys.onPressed: event => {
                    if (event.key === Qt.Key_Backspace) {
                        studio.removeKeyword(chips.key, index)
                        event.accepted = true
                    } else if ((event.modifiers & Qt.ControlModifier) && (event.key === Qt.Key_Left || event.key === Qt.Key_Right)) {
                        const to = index + (event.key === Qt.Key_Left ? -1 : 1)
                        studio.moveKeyword(chips.key, index, to)
                        event.accepted = true
                    }
                }
                RowLayout {
                    id: row
                    anchors.centerIn: parent
                    spacing: 4
                    Label { text: chip.modelData; color: chips.theme.text }
                    Label {
                        objectName: chips.key + ".chip." + chip.index + ".remove"
                        text: "✕"
                        color: chips.theme.secondaryText
                        MouseArea {
                            anchors.fill: parent
                            anchors.margins: -4
                            cursorShape: Qt.PointingHandCursor
                            onClicked: studio.removeKeyword(chips.key, chip.index)
                        }
                    }
                }
            }
        }
    }

    RowLayout {
        Layout.fillWidth: true
        TextField {
            id: input
            objectName: chips.key + ".input"
            Layout.fillWidth: true
            placeholderText: "Add a keyword and press Enter"
            placeholderTextColor: chips.theme.secondaryText
            color: chips.theme.text
            Accessible.name: "New keyword"
            background: Rectangle { radius: 5; color: chips.theme.window; border.color: chips.theme.border }
            onAccepted: { studio.addKeyword(chips.key, text); text = "" }
            onTextEdited: {
                if (text.indexOf(",") >= 0) {
                    for (const part of text.split(",")) studio.addKeyword(chips.key, part)
                    text = ""
                }
            }
        }
        Label {
            objectName: chips.key + ".remaining"
            text: chips.remaining >= 0 ? chips.remaining + (chips.remaining === 1 ? " character left" : " characters left")
                                       : (-chips.remaining) + " characters too many"
            color: chips.remaining < 0 ? chips.theme.blocker : chips.theme.secondaryText
        }
    }
}
