import QtQuick 2.15
import QtQuick.Controls 2.15
import Calyx 1.0

// The answers to a poll as bars that grow as they come in. Until they are to be seen: the options alone.
Column {
    id: chart
    property Poll poll
    property bool isShown: true
    property real unit: 16
    spacing: unit / 3
    Repeater {
        model: chart.poll ? chart.poll.results : null
        Label {
            id: bar
            required property var model
            visible: chart.isShown || model.index < chart.poll.question.optionIds().length
            width: chart.width
            padding: chart.unit / 2
            text: (model.label + " " + model.text).trim() + (chart.isShown ? ": " + model.count + (model.isCorrect ? " ✓" : "") : "")
            textFormat: Text.PlainText; elide: Text.ElideRight
            font.pixelSize: chart.unit
            Rectangle {
                z: -1; height: bar.height; width: chart.isShown ? bar.model.share * bar.width : 0
                color: bar.palette.highlight; opacity: 0.4
                Behavior on width { NumberAnimation { duration: 300 } }
            }
        }
    }
}
