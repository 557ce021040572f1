import QtQml 2.15
import QtQml.Models 2.15
import QtTest 1.15
import Calyx 1.0

// A lesson from the login to the end, with what a host in QML uses: properties, models by their role names, enumerations, values.
TestCase {
    id: test
    name: "Lesson"

    property var errors: []
    property var states: []

    Lesson {
        id: lesson
        onStateChanged: test.states.push(state)
        onFailed: test.errors.push(error)
    }
    Instantiator {
        id: learners
        model: lesson.roster
        QtObject {
            readonly property string name: model.name
            readonly property string text: model.answer
            readonly property bool hasAnswered: model.hasAnswered
            readonly property bool isPresent: model.isPresent
        }
    }
    Instantiator {
        id: missing
        model: RosterFilter { roster: lesson.roster; onlyMissing: true }
        QtObject { readonly property string name: model.name }
    }
    Instantiator {
        id: bars
        model: lesson.poll ? lesson.poll.results : null
        QtObject {
            readonly property string label: model.label
            readonly property string text: model.text
            readonly property int count: model.count
            readonly property real share: model.share
            readonly property bool isCorrect: model.isCorrect
        }
    }
    Instantiator {
        id: asked
        model: lesson.polls
        QtObject { readonly property string title: modelData.title }
    }
    Instantiator {
        id: cards
        property var first
        onObjectAdded: (index, card) => first = card
        model: lesson.deck
        QtObject { readonly property bool isCurrent: model.isCurrent }
    }

    function tell(command, answer) { compare(classroom.tell(command), answer) }

    function initTestCase() {
        lesson.setServer("192.0.2.1:8090 ")
        compare(lesson.server, "https://192.0.2.1:8090")
        lesson.server = classroom.url
        lesson.setName("trees", "Trees")
        lesson.logIn("teacher", "slate")
        tryCompare(test.errors, "length", 1)
        compare(test.errors[0].kind, LessonError.BadCredentials)
        verify(test.errors[0].text !== "" && test.errors[0].advice !== "")
        lesson.logIn("teacher", "chalk")
        lesson.start()
        tryCompare(lesson, "state", Lesson.Live)
        compare(test.states, [Lesson.LoggingIn, Lesson.LoggedOut, Lesson.LoggingIn, Lesson.LoggedIn, Lesson.Starting, Lesson.Live])
        verify(/^\d{6}$/.test(lesson.joinCode))
        tell("join 3", "ok 3 learners")
        tryCompare(lesson.roster, "presentCount", 3)
        compare(learners.objectAt(0).name, lesson.roster.name(lesson.roster.present()[0]))
    }
    function cleanupTestCase() {
        lesson.end()
        tryCompare(lesson, "state", Lesson.LoggedIn)
        compare(lesson.report().polls.length, 2)
        compare(lesson.polls.map((poll) => poll.number), [1, 2])
        lesson.clearPolls()
        compare([lesson.polls.length, asked.count], [0, 0])
    }

    function test_aPollIsCountedInItsModel() {
        const poll = lesson.ask({kind: PollType.MULTIPLE, labels: OrdinalType.ALPHA_LOWER, options: ["oak", "elm"], right: ["b"]})
        compare(poll, lesson.poll)
        verify(poll.running)
        compare(poll.question.kind, "multiple")
        compare(poll.missing().length, 3)
        tell("answer by 2 b", "ok 2 learners")
        tryCompare(poll, "answered", 2)
        compare(poll.expected, 3)
        compare([bars.count, bars.objectAt(1).label, bars.objectAt(1).text, bars.objectAt(1).count, bars.objectAt(1).share,
                 bars.objectAt(1).isCorrect], [2, "b", "elm", 2, 1, true])
        const answer = poll.answerOf(lesson.roster.find(learners.objectAt(0).name)[0])
        compare([answer.text, answer.mark], ["b", PollAnswer.Right])
        compare([missing.count, missing.objectAt(0).name], [1, learners.objectAt(2).name])
        compare([learners.objectAt(0).hasAnswered, learners.objectAt(2).hasAnswered], [true, false])
        lesson.pause()
        verify(poll.paused)
        lesson.stop()
        verify(!poll.running)
        compare(asked.objectAt(lesson.polls.indexOf(poll)).title, poll.title)
        tell("idle", "ok")
        compare(lesson.ask({kind: "scale", labels: "no such labels", optionCount: -1}), null)
        compare(test.errors[test.errors.length - 1].kind, LessonError.BadInput)
    }
    function test_aLostLessonIsFoundAgain() {
        tell("down", "ok")
        tryCompare(lesson, "state", Lesson.Reconnecting)
        const poll = lesson.ask({kind: PollType.TEXT, text: "Why?"}) // for when the channel is back
        tell("mend", "ok")
        lesson.retryNow()
        tryCompare(lesson, "state", Lesson.Live)
        tryCompare(lesson.roster, "presentCount", 3)
        tell("answer because", "ok 3 learners")
        tryCompare(poll, "answered", 3)
        compare([bars.count, bars.objectAt(0).label, bars.objectAt(0).count], [1, "because", 3])
        lesson.stop()
    }
    function test_anAssessmentIsAModelOfLearners() {
        const plan = {title: "Trees", questions: [{kind: PollType.YES_NO_OTHER, right: ["A"]}]}
        compare(lesson.startAssessment(plan, [lesson.roster.present()[0]]).expected, 1)
        const assessment = lesson.startAssessment(plan)
        compare([lesson.assessment, lesson.assessments[1]], [assessment, assessment])
        tell("answer A", "ok 3 learners")
        tryCompare(assessment, "finished", 3)
        compare(assessment.rowCount(), 3)
        verify(assessment.toCsv().indexOf(learners.objectAt(0).name) > 0)
        lesson.stopAssessment()
        verify(!assessment.running)
    }
    function test_cardsLockAndTexts() {
        verify(lesson.deck.add("a leaf", "data:image/png;base64,iVBORw0KGgo="))
        compare([lesson.deck.count, cards.first.isCurrent], [1, true])
        lesson.showCard()
        lesson.locked = true
        verify(lesson.locked)
        lesson.locked = false
        lesson.showText("Well done")
        lesson.setObeys(Lesson.EndLesson, false)
    }
}
