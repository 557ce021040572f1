import QtQuick 2.15

// To be drawn on with a finger, a pen or the mouse.
Canvas {
    id: canvas
    property bool isNew: true
    function wipe() { isNew = true; requestPaint() }
    contextType: "2d"
    implicitHeight: width / 2
    Accessible.name: qsTr("Drawing")
    onPaint: if (isNew) { context.fillStyle = "white"; context.fillRect(0, 0, width, height); isNew = false }
    Rectangle { anchors.fill: parent; color: "transparent"; border.color: "gray" }
    MouseArea {
        anchors.fill: parent
        preventStealing: true
        onPressed: (mouse) => { canvas.context.beginPath(); canvas.context.moveTo(mouse.x, mouse.y) }
        onPositionChanged: (mouse) => { canvas.context.lineTo(mouse.x, mouse.y); canvas.context.stroke(); canvas.requestPaint() }
    }
}
