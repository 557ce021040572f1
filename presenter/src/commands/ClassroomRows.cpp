#include "commands/CommandRows.h"
#include "commands/Handlers.h"

#include <iterator>

namespace {

using P = Place;

// A row tells all about a command; clang-format would put each member on a line of its own.
// clang-format off
const Command rows[] = {
    {"poll", "TYPE [ORDINAL] [OPTIONS] [EXTRA] [picture FILE | upload FILE | ref REFERENCE]", "Put a poll to the learners.",
     "TYPE: true-false, yes-no-other, multiple, scale, sort, text, word-seed, number, creative,\n"
     "math-formula. ORDINAL labels the options: true-false, yes-no, yes-no-maybe, yes-no-unsure,\n"
     "yes-no-other, alpha-upper, alpha-lower, number, agreement, confidence, generic. OPTIONS is\n"
     "their number; of a number poll, its decimals. EXTRA is the number of correct options of a\n"
     "multiple choice. What is left out is what the type usually has. A picture is a PNG file that\n"
     "travels in the message, a file that is uploaded, or an address from which devices can load it.\n"
     "A poll that runs is stopped first.\n"
     "Examples: poll true-false    poll multiple alpha-upper 5 2    poll number 2\n"
     "          poll scale agreement 5 picture images/leaf.png",
     1, -1, false, {P::PollType, P::Ordinal}, "picture upload ref", Handlers::poll},
    {"poll stop", "", "Stop the poll and show its final tally.", "", 0, 0, false, {}, "", Handlers::pollStop},
    {"poll pause", "", "Let the learners pause.", "", 0, 0, false, {}, "", Handlers::pollPause},
    {"poll resume", "", "Let the learners go on.", "", 0, 0, false, {}, "", Handlers::pollResume},
    {"poll status", "", "Show the answers so far and whose are missing.",
     "", 0, 0, false, {}, "", Handlers::pollStatus},
    {"card", "FILE", "Show a PNG picture on the learners' devices.",
     "The picture travels in the message; a large one is announced before.",
     1, 1, false, {P::File}, "", Handlers::card},
    {"card ref", "REFERENCE", "Show a picture that devices load from an address.",
     "", 1, 1, false, {}, "", Handlers::cardReference},
    {"card upload", "FILE", "Upload a picture and show it by its address.",
     "", 1, 1, false, {P::File}, "", Handlers::cardUpload},
    {"upload", "FILE", "Store a file at the service and print its address.",
     "", 1, 1, false, {P::File}, "", Handlers::upload},
    {"heavy", "", "Tell the learners' devices that something large is coming.",
     "", 0, 0, false, {}, "", Handlers::heavy},
    {"deck", "", "List the cards of the lesson.",
     "They are what the remote control goes through, and pushes to the learners.",
     0, 0, false, {}, "", Handlers::deck},
    {"deck add", "FILE [name=TEXT]", "Add a PNG picture to the lesson's cards.",
     "", 1, 2, false, {P::File}, "name=", Handlers::deckAdd},
    {"deck upload", "FILE [name=TEXT]", "Upload a picture and add it by its address.",
     "", 1, 2, false, {P::File}, "name=", Handlers::deckUpload},
    {"deck ref", "REFERENCE [name=TEXT]", "Add a picture that devices load from an address.",
     "", 1, 2, false, {}, "name=", Handlers::deckReference},
    {"deck next", "", "Go to the next card.", "", 0, 0, false, {}, "", Handlers::deckNext},
    {"deck previous", "", "Go to the card before.", "", 0, 0, false, {}, "", Handlers::deckPrevious},
    {"deck go", "NUMBER", "Go to a card.", "", 1, 1, false, {P::Number}, "", Handlers::deckGo},
    {"deck show", "", "Show the current card on the learners' devices.",
     "", 0, 0, false, {}, "", Handlers::deckShow},
    {"lock", "", "Cover the learners' devices with a text.",
     "Until \"unlock\", or until the next poll starts.",
     0, 0, false, {}, "", Handlers::lock},
    {"unlock", "", "Let the learners go on.", "", 0, 0, false, {}, "", Handlers::unlock},
    {"lesson", "[NAME] [id=ID]", "Name the lesson, for the remote control.",
     "Without a name of its own it is called as its script.",
     1, -1, false, {}, "id=", Handlers::lesson},
    {"remote lesson", "ID NAME", "Tell the remote control of some lesson.",
     "By itself it is told of this one.", 2, 2, false, {}, "", Handlers::remoteLesson},
    {"remote card", "NUMBER TOTAL", "Tell the remote control which card is shown.",
     "", 2, 2, false, {P::Number, P::Number}, "", Handlers::remoteCard},
    {"remote active", "", "Tell the remote control that the presenter is here.",
     "", 0, 0, false, {}, "", Handlers::remoteActive},
    {"assessment question",
     "TYPE [ORDINAL] [OPTIONS] [EXTRA] [text=TEXT] [choices=A|B] [answer=ANSWER]",
     "Write a question of the next assessment.",
     "The types are those of \"poll\". Choices are what the options say; their number is that of the\n"
     "options. ANSWER is the right one, for the marks: options by their ids, a number, or words. Where\n"
     "several are right, \"|\" divides them. Nothing goes out before \"assessment start\".\n"
     "Examples: assessment question number text=\"How many legs has a spider?\" answer=8\n"
     "          assessment question multiple choices=oxygen|water|light answer=BC",
     1, -1, false, {P::PollType, P::Ordinal}, "text= choices= answer=", Handlers::assessmentQuestion},
    {"assessment start",
     "[to=LEARNER] [title=TEXT] [time=SECONDS] [SETTING=yes|no ...]",
     "Begin an assessment of the questions written.",
     "For one learner or, without \"to\", for the class and whoever joins it. Each learner gets the\n"
     "questions as he asks for them, at his own pace. While one is under way for single learners,\n"
     "\"to\" adds another. Without \"time\" it takes as long as it takes. The questions stay for another\n"
     "start, until the first of a new set is written. The settings, and what they are unless told\n"
     "otherwise: skip=no, questions may be skipped; navigate=no, one may go back to questions;\n"
     "resubmit=yes, answers may be changed; summary=no, the device shows a summary at the end.",
     0, -1, false, {}, "to= title= time= skip= navigate= resubmit= summary=", Handlers::assessmentStart},
    {"assessment results", "", "Show the results so far, by learner and by question.",
     "A mark stands before each answer that has a right one.",
     0, 0, false, {}, "", Handlers::assessmentResults},
    {"assessment dialog", "[to=LEARNER] [dismissible=no] TEXT", "Show a text on the learners' devices.",
     "Also without an assessment.",
     1, -1, false, {}, "to= dismissible=", Handlers::assessmentDialog},
    {"assessment review", "[to=LEARNER] TEXT", "Let the learners review their questions.",
     "", 1, -1, false, {}, "to=", Handlers::assessmentReview},
    {"assessment pause", "", "Let the learners pause.", "", 0, 0, false, {}, "", Handlers::assessmentPause},
    {"assessment resume", "", "Let the learners go on.", "", 0, 0, false, {}, "", Handlers::assessmentResume},
    {"assessment stop", "", "End the assessment and show its results.",
     "", 0, 0, false, {}, "", Handlers::assessmentStop},
    {"publish", "ADDRESS TYPE JSON", "Publish a message of your own.",
     "An ADDRESS that begins with \".\" is below the session: .learner, .controller, .user.DEVICE.\n"
     "Example: publish .learner heavy '\"\"'",
     3, 3, false, {}, "", Handlers::publish},
};
// clang-format on

} // namespace

QVector<Command> CommandRows::classroom()
{
    return QVector<Command>(std::begin(rows), std::end(rows));
}
