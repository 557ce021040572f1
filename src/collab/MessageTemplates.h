#pragma once

#include <QString>

/// The texts of the event bus. Placeholders are filled with the one-call form of QString::arg(), so that a
/// value that contains "%1" goes out as it is. Values are not escaped.
namespace Calyx {

/// A publish whose body is a JSON text: address, body.
const QString PUBLISH_MESSAGE_3 = QStringLiteral(R"({"type":"publish","address":"%0","body":%1})");

///@{
/// What marks the start and the end of formula text that is embedded in other text.
const QString CALYX_LATEX_START = QStringLiteral(R"(<span class="mathquill-embedded-latex">)");
const QString CALYX_LATEX_END = QStringLiteral("</span>");
///@}

/// What keeps the channel alive. No placeholders.
const QString PING_MESSAGE = QStringLiteral(R"({"type":"ping"})");

/// Asks the bus for what is published to an address: address.
const QString REGISTER_MESSAGE = QStringLiteral(R"({"type":"register","address":"%0"})");

/// A publish with compressed data: address, sender's user token, message type, base64 text of the data.
const QString PUBLISH_MESSAGE64 =
    QStringLiteral(R"({"type":"publish","address":"%0","body":{"from":"%1","type":"%2","data":["%3"]}})");

/// A poll without a question class: poll type, ordinal type, session token, session code, time, poll id,
/// option numbers, card image reference. The numbers in the card are part of the format.
const QString START_POLL_DATA64 = QStringLiteral(
    R"({"type":"%0","expressionQuestionId":1,"metadata":{"ordinalType":"%1","options":[%6]},"id":"%5",)"
    R"("sessionToken":"%2","sessionCode":"%3","lessonId":null,"startTime":%4,"lastUpdatedOn":%4,)"
    R"("card":{"segment":"fake-id","tracks":[{"placeholder":true}],"visible":true,"ordinal":1395358139515,)"
    R"("styles":{"backgroundColor":"","backgroundImage":"%7","backgroundSize":"100%"},"components":[]},)"
    R"("unrespondedUsers":[]})");

/// An image card: segment id, image reference. Geometry, ordinal and id are part of the format.
const QString SHOW_CARD_DATA = QStringLiteral(
    R"({"segment":{"id":"%0"},"isTeacherCard":true,"autoSend":true,"notes":null,"tracks":[],"visible":true,)"
    R"("ordinal":1,"styles":{"backgroundColor":"","backgroundImage":""},"components":[{"ordinal":1397148149039,)"
    R"("styles":{"anchor":false,"width":770,"left":15,"height":570,"top":15},"blob":{"url":"%1"},"type":"image"}],)"
    R"("trackSortSeq":0,"_tId":"DF8A71DA-3EF2-44E3-9B2F-F651C7A8B0F9","hasStudentCards":false})");

/// A value as a JSON string.
const QString PLAIN_DATA = QStringLiteral(R"("%0")");

/// Lesson id, lesson name.
const QString LESSON_DATA = QStringLiteral(R"({"lessonId":"%0", "name":"%1"})");

/// Current card, list of CURRENTCARD_SUBDATA, number of cards.
const QString CURRENTCARD_DATA = QStringLiteral(R"({"currentCard":"%0", "cards": [%1], "totalCards":"%2"})");

/// Name of one card.
const QString CURRENTCARD_SUBDATA = QStringLiteral(R"({"name":"%0"})");

} // namespace Calyx
