#pragma once

#include "commands/Command.h"

/// What the commands do, one function for each row of the table.
namespace Handlers {

// AccountCommands
Outcome check(Host& host, const Arguments& arguments);
Outcome login(Host& host, const Arguments& arguments);
Outcome loginToken(Host& host, const Arguments& arguments);
Outcome loginOAuth(Host& host, const Arguments& arguments);
Outcome registerUser(Host& host, const Arguments& arguments);
Outcome token(Host& host, const Arguments& arguments);
Outcome tokenOAuth(Host& host, const Arguments& arguments);
Outcome whoAmI(Host& host, const Arguments& arguments);
Outcome reLogin(Host& host, const Arguments& arguments);
Outcome keepAlive(Host& host, const Arguments& arguments);
Outcome logout(Host& host, const Arguments& arguments);

// SessionCommands
Outcome sessionStart(Host& host, const Arguments& arguments);
Outcome sessionCreate(Host& host, const Arguments& arguments);
Outcome sessionLive(Host& host, const Arguments& arguments);
Outcome sessionReconnect(Host& host, const Arguments& arguments);
Outcome sessionDisconnect(Host& host, const Arguments& arguments);
Outcome sessionInfo(Host& host, const Arguments& arguments);
Outcome sessionStop(Host& host, const Arguments& arguments);
Outcome learners(Host& host, const Arguments& arguments);
Outcome removeLearner(Host& host, const Arguments& arguments);

// PollCommands
Outcome poll(Host& host, const Arguments& arguments);
Outcome pollStop(Host& host, const Arguments& arguments);
Outcome pollPause(Host& host, const Arguments& arguments);
Outcome pollResume(Host& host, const Arguments& arguments);
Outcome pollStatus(Host& host, const Arguments& arguments);
Outcome summary(Host& host, const Arguments& arguments);

// CardCommands
Outcome card(Host& host, const Arguments& arguments);
Outcome cardReference(Host& host, const Arguments& arguments);
Outcome cardUpload(Host& host, const Arguments& arguments);
Outcome upload(Host& host, const Arguments& arguments);
Outcome heavy(Host& host, const Arguments& arguments);
Outcome deck(Host& host, const Arguments& arguments);
Outcome deckAdd(Host& host, const Arguments& arguments);
Outcome deckUpload(Host& host, const Arguments& arguments);
Outcome deckReference(Host& host, const Arguments& arguments);
Outcome deckNext(Host& host, const Arguments& arguments);
Outcome deckPrevious(Host& host, const Arguments& arguments);
Outcome deckGo(Host& host, const Arguments& arguments);
Outcome deckShow(Host& host, const Arguments& arguments);

// ChannelCommands
Outcome lesson(Host& host, const Arguments& arguments);
Outcome lock(Host& host, const Arguments& arguments);
Outcome unlock(Host& host, const Arguments& arguments);
Outcome remoteLesson(Host& host, const Arguments& arguments);
Outcome remoteCard(Host& host, const Arguments& arguments);
Outcome remoteActive(Host& host, const Arguments& arguments);
Outcome publish(Host& host, const Arguments& arguments);
Outcome ping(Host& host, const Arguments& arguments);

// AssessmentCommands
Outcome assessmentQuestion(Host& host, const Arguments& arguments);
Outcome assessmentStart(Host& host, const Arguments& arguments);
Outcome assessmentResults(Host& host, const Arguments& arguments);
Outcome assessmentDialog(Host& host, const Arguments& arguments);
Outcome assessmentReview(Host& host, const Arguments& arguments);
Outcome assessmentPause(Host& host, const Arguments& arguments);
Outcome assessmentResume(Host& host, const Arguments& arguments);
Outcome assessmentStop(Host& host, const Arguments& arguments);

// FlowCommands
Outcome say(Host& host, const Arguments& arguments);
Outcome heading(Host& host, const Arguments& arguments);
Outcome pause(Host& host, const Arguments& arguments);
Outcome waitLearners(Host& host, const Arguments& arguments);
Outcome waitAnswers(Host& host, const Arguments& arguments);
Outcome waitAssessment(Host& host, const Arguments& arguments);
Outcome expectLearners(Host& host, const Arguments& arguments);
Outcome expectAnswers(Host& host, const Arguments& arguments);
Outcome expectAssessment(Host& host, const Arguments& arguments);
Outcome set(Host& host, const Arguments& arguments);
Outcome help(Host& host, const Arguments& arguments);
Outcome quit(Host& host, const Arguments& arguments);

} // namespace Handlers
