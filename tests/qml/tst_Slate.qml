import QtQuick 2.15
import QtTest 1.15
import "../../examples/slate"

// The slate as its user meets it: by keyboard and mouse, and by what it shows. The pictures in the documents are drawn by
//     SLATE_PICTURES=docs/images xvfb-run build/dev/tests/qml/tst_Qml -import build/dev/qml
TestCase {
    id: test
    name: "Slate"
    when: windowShown
    Component.onCompleted: parent = slate.contentItem // whose window hears the keys

    Main { id: slate; server: classroom.url }

    readonly property var projector: findChild(slate, "projector")

    function tell(command, answer) { compare(classroom.tell(command), answer) }
    function activate(window) {
        window.requestActivate()
        tryCompare(window, "active", true)
    }
    function type(field, text) {
        const item = findChild(slate, field)
        item.forceActiveFocus()
        item.text = ""
        for (const letter of text) keyClick(letter)
    }
    function click(name) {
        const item = findChild(slate, name)
        verify(item.enabled && item.visible)
        item.clicked()
    }
    function shows(name, property, wanted) { tryCompare(findChild(slate, name) || findChild(projector, name), property, wanted) }
    /// The bars of a chart, as they are read out; each is as long as it should be, in the end.
    function bars(where, name, isShown) {
        const found = Array.from(findChild(where, name).children).filter((bar) => bar.visible && bar.text !== undefined)
        for (const bar of found) tryCompare(bar.children[0], "width", isShown ? bar.model.share * bar.width : 0)
        return found.map((bar) => bar.text)
    }

    function initTestCase() {
        activate(slate)
        type("user", "teacher")
        type("password", "slate")
        keyClick(Qt.Key_Return)
        tryVerify(() => findChild(slate, "notice").text !== "")
        classroom.draw(slate, "slate-login.png")
        type("password", "chalk")
        keyClick(Qt.Key_Return)
        tryCompare(slate, "isOpen", true)
        verify(/^\d{3} \d{3}$/.test(findChild(slate, "code").text))
        compare(findChild(slate, "code").textFormat, Text.PlainText)
        tell("join 12", "ok 12 learners")
        shows("learners", "text", "12 here, 0 have not answered")
    }
    function test_aPoll() {
        projector.show()
        activate(slate)
        type("question", "Which gas do plants take in?")
        type("options", "Oxygen, Carbon dioxide, Nitrogen")
        keyClick(Qt.Key_Return, Qt.ControlModifier)
        shows("learners", "text", "12 here, 12 have not answered")
        tell("answer by 5 B", "ok 5 learners")
        tell("answer by 2 A", "ok 2 learners")
        tell("answer by 2 C", "ok 2 learners")
        shows("learners", "text", "12 here, 3 have not answered")
        shows("answered", "text", "9 of 12 answered")
        compare(bars(slate, "chart", true), ["A Oxygen: 2", "B Carbon dioxide: 5", "C Nitrogen: 2"])
        compare(bars(projector, "projected", false), ["A Oxygen", "B Carbon dioxide", "C Nitrogen"])
        classroom.draw(projector, "slate-projector-hidden.png")
        findChild(slate, "reveal").toggle()
        findChild(slate, "reveal").toggled()
        compare(bars(projector, "projected", true), bars(slate, "chart", true))
        classroom.draw(projector, "slate-projector.png")
        classroom.draw(slate, "slate-lesson.png")
        for (const [name, width, height, dark] of [["phone", 360, 720, true], ["tablet", 768, 1024, false]]) {
            slate.width = width
            slate.height = height
            slate.isDark = dark
            tryCompare(slate.contentItem, "width", width)
            bars(slate, "chart", true)
            classroom.draw(slate, "slate-" + name + ".png")
        }
        click("ask")
        tell("idle", "ok")
        findChild(slate, "kinds").currentIndex = 3
        click("ask")
        tell("answer by 9 oak", "ok 9 learners")
        tryCompare(slate, "missing", 3)
        compare(bars(slate, "chart", true), ["oak: 9"])
        compare(bars(projector, "projected", false), [], "what learners have written is a result")
        click("ask")
        tell("idle", "ok")
        shows("learners", "text", "12 here, 0 have not answered")
    }
    function test_theKeyboardReachesWhatHasAName() {
        findChild(slate, "kinds").currentIndex = 0
        const reached = []
        for (let item = findChild(slate, "question").nextItemInFocusChain(); !reached.includes(item); item = item.nextItemInFocusChain()) {
            verify(item.Accessible.name || (item.placeholderText === undefined && item.text), item + " has no name")
            reached.push(item)
        }
        for (const name of ["question", "options", "ask", "reveal", "picture", "kinds", "end"]) verify(reached.includes(findChild(slate, name)), name)
    }
    function test_aDrawingIsShown() {
        const drawing = findChild(slate, "drawing")
        const leaf = (step) => [drawing.width * (0.5 + 0.35 * Math.cos(step / 8)), drawing.height * (0.5 + 0.3 * Math.sin(step / 4))]
        mousePress(drawing, ...leaf(0))
        for (let step = 1; step <= 51; step += 1) mouseMove(drawing, ...leaf(step))
        mouseRelease(drawing, ...leaf(51))
        click("picture")
        compare(findChild(slate, "notice").text, "")
    }
    function test_lostAndFoundAgain() {
        tell("down", "ok")
        tryVerify(() => /lost/.test(findChild(slate, "notice").text))
        classroom.draw(slate, "slate-lost.png")
        tell("mend", "ok")
        shows("notice", "text", "")
        shows("learners", "text", "12 here, 0 have not answered")
    }
    function cleanupTestCase() {
        click("end")
        tryCompare(slate, "isOpen", false)
    }
}
