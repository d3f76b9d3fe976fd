import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts

// The rule-language screen: each field of the essentials entity beside its declaration
// and live verdict, and the entity's combined verdict.
Flickable {
    id: screen
    implicitWidth: 460
    implicitHeight: content.implicitHeight + 32
    contentHeight: implicitHeight
    boundsBehavior: Flickable.StopAtBounds
    clip: true

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
            text: "Ultra-Clean @Tracked DSL"
            font.pixelSize: 24
            font.bold: true
            wrapMode: Text.Wrap
            Layout.fillWidth: true
        }
        Label {
            text: "🎉 Ultra-Clean @Tracked DSL Demo"
            font.pixelSize: 18
            font.bold: true
            wrapMode: Text.Wrap
            Layout.fillWidth: true
        }

        Card {
            title: "Required Fields (businessImpact: .blocker)"

            ValidationDemoField {
                objectName: "appName"
                title: "App Name"
                value: demo.appName
                onEdited: (text) => demo.appName = text
                result: demo.appNameResult
                syntax: "@Tracked(.required, [.tooLong(30)], .missingOptional(...))"
            }
            ValidationDemoField {
                objectName: "subtitle"
                title: "Subtitle"
                value: demo.subtitle
                onEdited: (text) => demo.subtitle = text
                result: demo.subtitleResult
                syntax: "@Tracked(.required, [.tooLong(30)])"
            }
            ValidationDemoField {
                objectName: "keywords"
                title: "Keywords"
                value: demo.keywords
                onEdited: (text) => demo.keywords = text
                result: demo.keywordsResult
                syntax: "@Tracked(.required, [.tooLong(100), .tooShort(10)])"
            }
        }

        Card {
            title: "Optional Fields (businessImpact: .opportunity)"

            ValidationDemoField {
                objectName: "description"
                title: "Description"
                value: demo.description
                onEdited: (text) => demo.description = text
                result: demo.descriptionResult
                syntax: "@Tracked(.optional, [.tooLong(4000)], .missingOptional(...))"
            }
            ValidationDemoField {
                objectName: "supportEmail"
                title: "Support Email"
                value: demo.supportEmail
                onEdited: (text) => demo.supportEmail = text
                result: demo.supportEmailResult
                syntax: "@Tracked(.optional, [.custom(...)], .missingOptional(...))"
            }
        }

        Card {
            title: "Overall Validation Status"

            RowLayout {
                Layout.fillWidth: true
                Symbol { name: demo.overallResult.symbol }
                Label {
                    objectName: "overallMessage"
                    text: demo.overallResult.message
                    wrapMode: Text.Wrap
                    Layout.fillWidth: true
                }
            }
            Label {
                objectName: "businessImpact"
                visible: text.length > 0
                text: demo.businessImpactText
                color: "#6e6e73"
                wrapMode: Text.Wrap
                Layout.fillWidth: true
            }
        }
    }
}
