import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// One field of the form: its label and unsaved mark, the editor (a line, a paragraph or
// keyword chips), the live counter against the limit, and the verdict with its fix.
// Controls are named "<key>.input", "<key>.counter", "<key>.message", "<key>.fix" and
// "<key>.unsaved" so that tests find them.
Rectangle {
    id: field
    required property var theme
    required property string key
    required property string label
    required property string text
    required property string placeholder
    required property string file
    required property string counter
    required property bool overLimit
    required property string symbol
    required property string colorName
    required property string message
    required property string level
    required property var otherFindings
    required property string fixTitle
    required property string editor
    required property bool unsaved
    required property bool fromDefault
    required property var keywords
    required property int remaining
    property bool rightToLeft: false

    // Puts the keyboard focus into the editor.
    function focusEditor() {
        if (editor === "keywords") chips.focusInput()
        else if (editor === "paragraph") paragraph.forceActiveFocus()
        else line.forceActiveFocus()
    }

    objectName: key + ".card"
    implicitHeight: column.implicitHeight + 24
    radius: 8
    color: theme.surface
    border.color: (line.activeFocus || paragraph.activeFocus) ? theme.accent : theme.border
    border.width: (line.activeFocus || paragraph.activeFocus) ? 2 : 1

    ColumnLayout {
        id: column
        anchors.fill: parent
        anchors.margins: 12
        spacing: 6

        RowLayout {
            Layout.fillWidth: true
            spacing: 6
            Label {
                text: field.label
                font.bold: true
                color: field.theme.text
            }
            Label {
                objectName: field.key + ".unsaved"
                visible: field.unsaved
                text: "● Unsaved"
                color: field.theme.unsaved
                font.pixelSize: 12
                Accessible.name: "Unsaved change"
            }
            Item { Layout.fillWidth: true }
            Label {
                objectName: field.key + ".counter"
                text: field.counter
                color: field.overLimit ? field.theme.blocker : field.theme.secondaryText
                font.bold: field.overLimit
                Accessible.name: "Characters: " + field.counter
            }
        }

        TextField {
            id: line
            objectName: field.editor === "line" ? field.key + ".input" : ""
            visible: field.editor === "line"
            Layout.fillWidth: true
            text: field.text
            placeholderText: field.placeholder
            placeholderTextColor: field.theme.secondaryText
            color: field.theme.text
            selectByMouse: true
            horizontalAlignment: field.rightToLeft && text.length === 0 ? Text.AlignRight : undefined
            Accessible.name: field.label
            background: Rectangle {
                radius: 5
                color: field.theme.window
                border.color: field.theme.border
            }
            onTextEdited: studio.setText(field.key, text)
        }

        ScrollView {
            id: paragraphScroll
            visible: field.editor === "paragraph"
            contentWidth: availableWidth
            Layout.fillWidth: true
            Layout.preferredHeight: Math.min(Math.max(paragraph.implicitHeight, 90), 260)
            TextArea {
                id: paragraph
                objectName: field.editor === "paragraph" ? field.key + ".input" : ""
                text: field.text
                placeholderText: field.placeholder
                placeholderTextColor: field.theme.secondaryText
                color: field.theme.text
                wrapMode: TextEdit.Wrap
                selectByMouse: true
                Accessible.name: field.label
                // Tab moves on to the next control, as everywhere else in the form.
                KeyNavigation.priority: KeyNavigation.BeforeItem
                Keys.onTabPressed: event => { nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason); event.accepted = true }
                Keys.onBacktabPressed: event => { nextItemInFocusChain(false).forceActiveFocus(Qt.BacktabFocusReason); event.accepted = true }
                background: Rectangle {
                    radius: 5
                    color: field.theme.window
                    border.color: field.theme.border
                }
                onTextChanged: if (activeFocus && text !== field.text) studio.setText(field.key, text)
            }
        }

        KeywordChips {
            id: chips
            visible: field.editor === "keywords"
            Layout.fillWidth: true
            theme: field.theme
            key: field.key
            keywords: field.keywords
            remaining: field.remaining
        }

        Label {
            visible: field.fromDefault
            Layout.fillWidth: true
            text: "Shown from default/ (" + field.file + "). Type to give this locale a text of its own."
            color: field.theme.secondaryText
            font.pixelSize: 12
            wrapMode: Text.Wrap
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: 6
            Label {
                text: field.symbol
                font.family: "Noto Color Emoji"
                font.pixelSize: 14
                color: field.theme.verdictColor(field.colorName)
                Layout.alignment: Qt.AlignTop
            }
            Label {
                objectName: field.key + ".message"
                Layout.fillWidth: true
                text: (field.level.length > 0 ? field.level + ": " : "") + field.message
                color: field.theme.verdictColor(field.colorName)
                wrapMode: Text.Wrap
            }
            ToolButtonText {
                objectName: field.key + ".fix"
                theme: field.theme
                visible: field.fixTitle.length > 0
                text: field.fixTitle
                primary: true
                onClicked: studio.applyFix(field.key)
            }
            ToolButtonText {
                objectName: field.key + ".discard"
                theme: field.theme
                visible: field.unsaved
                text: "Discard"
                onClicked: studio.discardField(field.key)
            }
        }

        Repeater {
            model: field.otherFindings
            Label {
                required property string modelData
                Layout.fillWidth: true
                text: "• " + modelData
                color: field.theme.secondaryText
                font.pixelSize: 12
                wrapMode: Text.Wrap
            }
        }
    }
}
