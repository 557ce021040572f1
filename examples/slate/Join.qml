import QtQuick 2.15
import QtQuick.Controls 2.15
import Calyx 1.0

// How to join: the address and the code, and both in a QR code.
Row {
    id: join
    required property Lesson lesson
    property real unit: 16
    spacing: unit
    Image {
        width: 8 * join.unit; height: width
        source: join.lesson.joinCode === "" ? "" : "image://qr/" + encodeURIComponent(join.lesson.joinLink)
        smooth: false
        Accessible.name: qsTr("QR code of %1").arg(join.lesson.joinLink)
    }
    Column {
        anchors.verticalCenter: parent.verticalCenter
        Label { text: join.lesson.joinAddress; textFormat: Text.PlainText; font.pixelSize: join.unit }
        Label { objectName: "code"; text: join.lesson.grouped(join.lesson.joinCode); textFormat: Text.PlainText; font { pixelSize: 3 * join.unit; bold: true } }
    }
}
