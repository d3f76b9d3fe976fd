import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// The listing's locales and its shared data, each with its blockers and rejection risks
// and a mark when it holds unsaved changes. Arrow keys move the selection.
Rectangle {
    id: sidebar
    required property var theme
    signal addLocaleRequested()

    color: theme.sidebar

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 8
        spacing: 6

        Label {
            text: "Locales"
            color: sidebar.theme.secondaryText
            font.pixelSize: 12
            font.bold: true
            Layout.leftMargin: 6
        }

        ListView {
            id: list
            objectName: "scopeList"
            Layout.fillWidth: true
            Layout.fillHeight: true
            clip: true
            model: studio.scopes
            currentIndex: -1
            activeFocusOnTab: true
            keyNavigationEnabled: true
            Accessible.name: "Locales"
            onCurrentIndexChanged: if (activeFocus && currentItem) studio.selectScope(currentItem.scope)
            ScrollBar.vertical: ScrollBar {}

            Connections {
                target: studio
                function onCurrentScopeChanged() { list.currentIndex = studio.scopes.indexOf(studio.currentScope) }
            }

            delegate: Rectangle {
                id: entry
                required property string scope
                required property string title
                required property string detail
                required property int blockers
                required property int risks
                required property bool unsaved
                required property int index
                objectName: "scope." + scope
                width: ListView.view.width
                height: 46
                radius: 6
                readonly property bool selected: scope === studio.currentScope
                color: selected ? sidebar.theme.selection : (area.containsMouse ? sidebar.theme.chip : "transparent")
                border.color: selected && list.activeFocus ? sidebar.theme.accent : "transparent"
                Accessible.role: Accessible.ListItem
                Accessible.name: title + (blockers > 0 ? ", " + blockers + " blockers" : "") + (unsaved ? ", unsaved" : "")

                MouseArea {
                    id: area
                    anchors.fill: parent
                    hoverEnabled: true
                    onClicked: { list.currentIndex = entry.index; studio.selectScope(entry.scope) }
                }
                RowLayout {
                    anchors.fill: parent
                    anchors.leftMargin: 8
                    anchors.rightMargin: 8
                    spacing: 6
                    ColumnLayout {
                        Layout.fillWidth: true
                        spacing: 0
                        RowLayout {
                            spacing: 6
                            Layout.fillWidth: true
                            Label {
                                text: entry.title
                                color: sidebar.theme.text
                                font.bold: entry.selected
                                elide: Text.ElideRight
                                Layout.fillWidth: true
                            }
                            Label {
                                objectName: "scope." + entry.scope + ".unsaved"
                                visible: entry.unsaved
                                text: "●"
                                color: sidebar.theme.unsaved
                                Accessible.name: "Unsaved changes"
                            }
                        }
                        Label {
                            text: entry.detail
                            visible: text.length > 0
                            color: sidebar.theme.secondaryText
                            font.pixelSize: 11
                            elide: Text.ElideRight
                            Layout.fillWidth: true
                        }
                    }
                    Badge { objectName: "scope." + entry.scope + ".blockers"; count: entry.blockers; tone: sidebar.theme.blocker; textColor: sidebar.theme.badgeText; what: "blockers" }
                    Badge { objectName: "scope." + entry.scope + ".risks"; count: entry.risks; tone: sidebar.theme.risk; textColor: sidebar.theme.badgeText; what: "rejection risks" }
                }
            }
        }

        ToolButtonText {
            objectName: "addLocaleButton"
            theme: sidebar.theme
            text: "Add locale…"
            Layout.fillWidth: true
            enabled: studio.isOpen
            onClicked: sidebar.addLocaleRequested()
        }
    }
}
