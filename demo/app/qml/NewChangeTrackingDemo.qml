import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Corvane.Demo

// The showcase screen: an app and a user entity under one change tracker, with the
// tracker's live status and the shared validation cache's statistics.
Flickable {
    id: screen
    implicitWidth: 460
    implicitHeight: content.implicitHeight + 32
    contentHeight: implicitHeight
    boundsBehavior: Flickable.StopAtBounds
    clip: true

    Component.onCompleted: demo.appear()

    Rectangle {
        width: screen.width
        height: Math.max(screen.height, screen.contentHeight)
        color: "#f2f2f7"
    }

    ColumnLayout {
        id: content
        x: 16
        y: 16
        width: screen.width - 32
        spacing: 14

        Label {
            text: "🚀 NEW ChangeTracking System Showcase"
            font.pixelSize: 20
            font.bold: true
            wrapMode: Text.Wrap
            Layout.fillWidth: true
        }
        Label {
            text: "Revolutionary @Tracked properties with ValidationCache and UnifiedChangeTracker"
            color: "#555555"
            wrapMode: Text.Wrap
            Layout.fillWidth: true
        }
        RowLayout {
            Layout.fillWidth: true
            spacing: 8
            Badge { symbol: "bolt.fill"; caption: "100x Faster Validation" }
            Badge { symbol: "speedometer"; caption: "O(1) Change Detection" }
            Badge { symbol: "chart.line.uptrend.xyaxis"; caption: "90% Less\nCode" }
        }

        Card {
            title: "App Information"

            RowLayout {
                Layout.fillWidth: true
                TextField {
                    objectName: "appNameField"
                    placeholderText: "Enter app name"
                    text: demo.appName
                    onTextEdited: demo.appName = text
                    Layout.fillWidth: true
                }
                Symbol { objectName: "appNameSymbol"; name: demo.appNameSymbol }
            }
            RowLayout {
                Layout.fillWidth: true
                TextField {
                    objectName: "subtitleField"
                    placeholderText: "Enter subtitle (optional)"
                    text: demo.subtitle
                    onTextEdited: demo.subtitle = text
                    Layout.fillWidth: true
                }
                Symbol { objectName: "subtitleSymbol"; name: demo.subtitleSymbol }
            }
            RowLayout {
                Layout.fillWidth: true
                TextField {
                    objectName: "versionField"
                    placeholderText: "1.0.0"
                    text: demo.version
                    onTextEdited: demo.version = text
                    Layout.fillWidth: true
                }
                Symbol { objectName: "versionSymbol"; name: demo.versionSymbol }
            }
            TextField {
                objectName: "appDescriptionField"
                placeholderText: "Enter app description (optional)"
                text: demo.appDescription
                onTextEdited: demo.appDescription = text
                Layout.fillWidth: true
            }
        }

        Card {
            title: "Keywords"

            Label { objectName: "keywordCount"; text: "Keywords: " + demo.keywordCountText; color: "#555555" }
            RowLayout {
                Layout.fillWidth: true
                TextField {
                    objectName: "keywordField"
                    placeholderText: "Enter keyword"
                    text: demo.keywordInput
                    onTextEdited: demo.keywordInput = text
                    onAccepted: demo.addKeyword()
                    Layout.fillWidth: true
                }
                Button {
                    objectName: "addKeywordButton"
                    text: "Add keyword"
                    onClicked: demo.addKeyword()
                }
            }
            FlowLayout {
                objectName: "keywordChips"
                spacing: 8
                Layout.fillWidth: true
                Layout.preferredHeight: implicitHeight

                Repeater {
                    model: demo.keywords

                    Rectangle {
                        required property string modelData
                        required property int index
                        implicitWidth: chip.implicitWidth + 20
                        implicitHeight: chip.implicitHeight + 10
                        radius: height / 2
                        color: "#dbe7fd"

                        Row {
                            id: chip
                            anchors.centerIn: parent
                            spacing: 6
                            Label { text: modelData; color: "#1a4fa0" }
                            Label {
                                text: "✕"
                                color: "#1a4fa0"
                                MouseArea { anchors.fill: parent; onClicked: demo.removeKeyword(index) }
                            }
                        }
                    }
                }
            }
        }

        Card {
            title: "🚀 System Status (Real-time)"

            InfoRow { objectName: "changesRow"; label: "Changes:"; value: demo.changesText }
            InfoRow { objectName: "validationRow"; label: "Validation:"; value: demo.validationText }
            InfoRow {
                objectName: "canSubmitRow"
                label: "Can Submit:"
                value: symbols.glyph(demo.canSubmitSymbol)
                valueItem.font.family: "Noto Color Emoji"
            }
            InfoRow { objectName: "entitiesRow"; label: "Entities:"; value: demo.entitiesText }
        }

        Card {
            title: "🎯 Simple Cache Stats"

            Label {
                text: "✨ First principles: @Observable + direct properties = zero setup"
                color: "#555555"
                wrapMode: Text.Wrap
                Layout.fillWidth: true
            }
            InfoRow { objectName: "validationsRow"; label: "Validations:"; value: demo.validationsText }
            InfoRow { objectName: "cacheHitsRow"; label: "Cache Hits:"; value: demo.cacheHitsText }
            InfoRow { objectName: "hitRateRow"; label: "Hit Rate:"; value: demo.hitRateText }
            InfoRow { objectName: "cacheSizeRow"; label: "Cache Size:"; value: demo.cacheSizeText }
        }

        ColumnLayout {
            Layout.fillWidth: true
            spacing: 8
            Button { objectName: "testCacheButton"; text: "Test Cache"; Layout.fillWidth: true; onClicked: demo.testCache() }
            Button {
                objectName: "submitAllButton"
                text: "Submit All"
                Layout.fillWidth: true
                onClicked: demo.submitAll()
            }
            Button {
                objectName: "discardAllButton"
                text: "Discard All Changes"
                Layout.fillWidth: true
                onClicked: demo.discardAll()
            }
        }
    }
}
