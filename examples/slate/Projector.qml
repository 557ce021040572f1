import QtQuick 2.15
import QtQuick.Controls 2.15
import Calyx 1.0

// What the class sees: how to join, and what is asked. No names, and no results before the teacher shows them.
ApplicationWindow {
    id: projector
    required property Lesson lesson
    property bool isShown: false
    readonly property Poll poll: lesson.poll
    readonly property real unit: Math.min(width / 36, height / 22)
    width: 1280; height: 720
    title: qsTr("For the class")
    Column {
        anchors { fill: parent; margins: projector.unit }
        spacing: projector.unit
        Join { unit: projector.unit * (projector.poll ? 0.7 : 1.5); lesson: projector.lesson }
        Label {
            width: parent.width
            text: projector.poll ? projector.poll.title : qsTr("%1 here").arg(projector.lesson.roster.presentCount)
            textFormat: Text.PlainText; wrapMode: Text.Wrap
            font.pixelSize: 2 * projector.unit
        }
        Label {
            objectName: "answered"
            text: projector.poll ? qsTr("%1 of %2 answered").arg(projector.poll.answered).arg(projector.poll.expected) : ""
            font.pixelSize: projector.unit
        }
        Chart {
            objectName: "projected"
            width: parent.width; unit: projector.unit
            poll: projector.poll; isShown: projector.isShown
        }
    }
}
