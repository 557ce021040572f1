import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import Calyx 1.0

ApplicationWindow {
    id: window
    property string server
    property bool isDark
    property string trouble // what went wrong last
    readonly property bool isOpen: lesson.joinCode !== ""
    readonly property bool isAsking: lesson.poll !== null && lesson.poll.running
    readonly property bool isLost: lesson.state === Lesson.Reconnecting
    readonly property int missing: isAsking ? lesson.poll.expected - lesson.poll.answered : 0
    readonly property color ink: isDark ? "#e8eaed" : "#202124"
    readonly property color paper: isDark ? "#202124" : "#ffffff"
    component Field: TextField { Layout.fillWidth: true; Accessible.name: placeholderText }
    function logIn() {
        lesson.setServer(address.text)
        lesson.logIn(user.text, password.text)
        lesson.start()
    }
    function ask() {
        const words = options.text.split(",").map((word) => word.trim()).filter((word) => word !== "")
        lesson.ask({ kind: kinds.currentValue, text: question.text, options: options.enabled ? words : [] })
        projector.isShown = false
    }
    function draw() { if (lesson.deck.add(qsTr("Drawing"), drawing.toDataURL("image/png"))) lesson.showCard(lesson.deck.count) }
    width: 1000; height: 760; visible: true
    title: qsTr("Slate")
    palette { window: paper; base: paper; windowText: ink; text: ink; buttonText: ink; highlight: "#00897b"; highlightedText: "white" }
    palette { button: isDark ? "#3c4043" : "#e3e6e9"; mid: isDark ? "#5f6368" : "#c4c9ce"; dark: isDark ? "#80cbc4" : "#00695c"; brightText: paper }
    Lesson {
        id: lesson
        onFailed: (error) => window.trouble = error.text + " " + error.advice
        onStateChanged: if (state === Lesson.LoggingIn || state === Lesson.Live) window.trouble = ""
    }
    Projector { id: projector; objectName: "projector"; lesson: lesson; palette: window.palette }
    Shortcut { sequence: "Ctrl+Return"; onActivated: askButton.clicked() }
    Shortcut { sequence: "F5"; onActivated: projector.show() }
    header: ToolBar {
        RowLayout {
            anchors { fill: parent; leftMargin: 16 }
            Label { Layout.fillWidth: true; text: lesson.user || window.title; textFormat: Text.PlainText; elide: Text.ElideRight }
            BusyIndicator { visible: lesson.busy; Layout.preferredHeight: 40 }
            ToolButton { visible: lesson.busy; text: qsTr("Cancel"); onClicked: lesson.cancel() }
            ToolButton { visible: window.isOpen; text: qsTr("Projector"); onClicked: projector.show() }
            ToolButton { text: window.isDark ? qsTr("Light") : qsTr("Dark"); onClicked: window.isDark = !window.isDark }
            ToolButton { objectName: "end"; visible: window.isOpen; text: qsTr("End"); onClicked: lesson.end() }
        }
    }
    footer: Pane {
        visible: notice.text !== ""
        palette.window: window.isDark ? "#5d4037" : "#ffe0b2"
        RowLayout {
            width: parent.width
            Label {
                id: notice; objectName: "notice"; Layout.fillWidth: true
                text: lesson.attemptText || window.trouble
                textFormat: Text.PlainText; wrapMode: Text.Wrap
                Accessible.role: Accessible.AlertMessage
            }
            Button { visible: window.isLost; text: qsTr("Try now"); onClicked: lesson.retryNow() }
        }
    }
    Flickable {
        anchors { fill: parent; margins: 16 }
        contentHeight: (window.isOpen ? board : login).height
        ScrollBar.vertical: ScrollBar {}
        ColumnLayout {
            id: login
            visible: !window.isOpen; enabled: !lesson.busy
            width: Math.min(parent.width, 400); anchors.horizontalCenter: parent.horizontalCenter
            Field { id: address; text: window.server; placeholderText: qsTr("Service") }
            Field { id: user; objectName: "user"; placeholderText: qsTr("User"); focus: true }
            Field { id: password; objectName: "password"; placeholderText: qsTr("Password"); echoMode: TextInput.Password; onAccepted: window.logIn() }
            Button { text: qsTr("Start a lesson"); highlighted: true; onClicked: window.logIn() }
        }
        GridLayout {
            id: board
            visible: window.isOpen
            width: parent.width
            columns: width < 700 ? 1 : 2; columnSpacing: 32
            ColumnLayout {
                Layout.alignment: Qt.AlignTop
                ComboBox {
                    id: kinds; objectName: "kinds"
                    Layout.fillWidth: true
                    Accessible.name: qsTr("Kind of question")
                    textRole: "text"; valueRole: "kind"
                    model: [{ text: qsTr("Multiple choice"), kind: PollType.MULTIPLE }, { text: qsTr("Scale"), kind: PollType.SCALE },
                        { text: qsTr("Yes or no"), kind: PollType.YES_NO_OTHER }, { text: qsTr("Text"), kind: PollType.TEXT }]
                }
                Field { id: question; objectName: "question"; placeholderText: qsTr("Question") }
                Field { id: options; objectName: "options"; placeholderText: qsTr("Answers, with commas between"); enabled: kinds.currentIndex === 0 }
                Flow {
                    Layout.fillWidth: true; spacing: 8
                    Button {
                        id: askButton; objectName: "ask"; highlighted: true
                        text: window.isAsking ? qsTr("Stop") : qsTr("Ask")
                        onClicked: window.isAsking ? lesson.stop() : window.ask()
                    }
                    Switch { objectName: "reveal"; text: qsTr("Show the class"); checked: projector.isShown; onToggled: projector.isShown = checked }
                }
                Chart { objectName: "chart"; Layout.fillWidth: true; poll: lesson.poll }
                Drawing { id: drawing; objectName: "drawing"; Layout.fillWidth: true; Layout.maximumWidth: 480 }
                RowLayout {
                    Button { objectName: "picture"; text: qsTr("Show the drawing"); onClicked: window.draw() }
                    Button { text: qsTr("Wipe"); onClicked: drawing.wipe() }
                }
            }
            ColumnLayout {
                Layout.alignment: Qt.AlignTop; Layout.preferredWidth: 300
                Join { lesson: lesson; unit: 12 }
                Label { objectName: "learners"; text: qsTr("%1 here, %2 have not answered").arg(lesson.roster.presentCount).arg(window.missing) }
                Flow {
                    Layout.fillWidth: true; spacing: 6
                    Repeater {
                        model: lesson.roster
                        Label {
                            id: learner
                            required property var model
                            readonly property bool isMissing: model.isPresent && window.isAsking && !model.hasAnswered
                            text: model.name; textFormat: Text.PlainText; padding: 6
                            font { bold: isMissing; strikeout: !model.isPresent }
                            background: Rectangle { radius: 4; color: learner.palette.highlight; opacity: learner.isMissing ? 0.5 : 0.1 }
                            Accessible.name: text + (isMissing ? qsTr(", has not answered") : model.isPresent ? "" : qsTr(", has left"))
                        }
                    }
                }
            }
        }
    }
}
