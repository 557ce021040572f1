#include "lesson/Notebook.h"

#include "text/Words.h"

#include <QUuid>

using Calyx::Lesson;

Notebook::Notebook(Lesson& lesson)
    : m_lesson(lesson), m_lessonId(QUuid::createUuid().toString(QUuid::WithoutBraces))
{
    setName(m_lessonId, Words::tr("Lesson"));
    connect(&lesson, &Lesson::stateChanged, this, &Notebook::onState);
    connect(&lesson, &Lesson::assessmentChanged, this, &Notebook::onAssessment);
    connect(&lesson, &Lesson::registrationNeeded, this,
            [this](const QString& data) { registration.data = data; });
    connect(&lesson, &Lesson::cardShown, this, [this] {
        ++m_cards;
        Q_EMIT changed();
    });
    connect(&lesson, &Lesson::changed, this, &Notebook::changed);
    connect(&lesson, &Lesson::failed, this, [this](const Calyx::LessonError& error) {
        isSessionGone |= error.kind == Calyx::LessonError::SessionGone;
        Q_EMIT changed();
    });
    const auto outdate = [this] { isSummaryShown = false; };
    connect(&lesson, &Lesson::pollChanged, this, outdate);
    connect(&lesson, &Lesson::answersChanged, this, outdate);
}

void Notebook::write(const Calyx::Question& question)
{
    if (m_isUsed)
        m_written.clear();
    m_isUsed = false;
    m_written.append(question);
}

void Notebook::setName(const QString& id, const QString& name)
{
    m_lessonId = id;
    m_lessonName = name;
    m_lesson.setName(id, name);
}

void Notebook::onState()
{
    if (m_lesson.state() == Lesson::Starting)
        m_cards = 0;
    if (m_lesson.state() == Lesson::Live) {
        createdCode.clear();
        isDisconnected = false;
        isSessionGone = false;
    }
    Q_EMIT changed();
}

void Notebook::onAssessment()
{
    isSummaryShown = false;
    if (m_lesson.assessment())
        connect(m_lesson.assessment(), &Calyx::Assessment::changed, this, &Notebook::changed,
                Qt::UniqueConnection);
    Q_EMIT changed();
}
