#include "LessonPage.h"

#include <CalyxClient/PresenterAssessment>

LessonPage::LessonPage(Classroom* classroom) : m_classroom(classroom), m_cards(new CardDeck(classroom))
{
    layOut();
    connectClassroom();
    m_redraw.setSingleShot(true);
    connect(&m_redraw, &QTimer::timeout, this, &LessonPage::refresh);
    connect(m_start, &QPushButton::clicked, this,
            [this] { m_classroom->begin(tr("Opening the lesson\u2026"), &Classroom::openLesson); });
    connect(m_end, &QPushButton::clicked, this,
            [this] { m_classroom->begin(tr("Ending the lesson\u2026"), &Classroom::stopLesson); });
    connect(m_logOut, &QPushButton::clicked, this,
            [this] { m_classroom->begin(tr("Logging out\u2026"), &Classroom::logOut); });
    connect(m_kind, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &LessonPage::chooseKind);
    connect(m_ask, &QPushButton::clicked, this, &LessonPage::startPoll);
    connect(m_pause, &QPushButton::clicked, this, [this] {
        m_classroom->tellChannel(m_poll == Running ? &PresenterCollab::pausePoll
                                                   : &PresenterCollab::resumePoll);
        m_poll = m_poll == Running ? Paused : Running;
        refresh();
    });
    connect(m_stop, &QPushButton::clicked, this, [this] {
        m_classroom->tellChannel(&PresenterCollab::stopPoll);
        m_poll = NoPoll;
        refresh();
        m_kind->setFocus(); // this button is disabled now
    });
    for (const PollKind& kind : PollKind::all())
        m_kind->addItem(kind.name);
}

void LessonPage::layOut()
{
    constexpr auto across = QBoxLayout::LeftToRight;
    constexpr auto down = QBoxLayout::TopToBottom;
    m_chart->setAccessibleName(tr("Answers"));
    m_chart->setRenderHint(QPainter::Antialiasing);
    m_state->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_state->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_learnerList->setSortingEnabled(true);
    m_learnerList->setAccessibleName(tr("Learners"));
    m_kind->setAccessibleName(tr("Kind of poll"));
    m_kind->setMaxVisibleItems(PollKind::all().size());

    auto* poll = new QGroupBox(tr("Poll"));
    auto* form = new QFormLayout(poll);
    form->addRow(tr("&Kind"), m_kind);
    form->addRow(tr("Opt&ions"), m_options);
    form->addRow(arrange(new QWidget, across, {m_ask, m_pause, m_stop}));
    form->addRow(m_answers);
    form->addRow(m_chart);
    auto* remote = arrange(new QGroupBox(tr("Remote control")), down, {m_remote});
    auto* columns = new QSplitter;
    columns->addWidget(arrange(m_learnerBox, down, {m_learnerList}));
    columns->addWidget(poll);
    columns->addWidget(arrange(new QWidget, down, {m_cards, remote}));
    columns->setStretchFactor(1, 1);
    columns->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    auto* header = arrange(new QWidget, across, {m_state, m_start, m_end, m_logOut});
    arrange(this, down, {header, columns});
}

void LessonPage::connectClassroom()
{
    connect(m_classroom, &Classroom::busy, this, [this](const QString& what) {
        m_busy = what;
        refresh();
    });
    connect(m_classroom, &Classroom::stageChanged, this, &LessonPage::setStage);
    connect(m_classroom, &Classroom::learnerFound, this, &LessonPage::join);
    connect(m_classroom, &Classroom::pollStarted, this, [this](const QString& answerId) {
        m_answerId = answerId;
        m_tally.clear(); // of a poll that was stopped before it had begun
    });
    // This runs on the classroom's thread. It only connects: what comes by the signals is done on the
    // window's.
    connect(
        m_classroom, &Classroom::channelMade, this,
        [this](PresenterCollab* channel) {
            connect(channel, &PresenterCollab::learnerJoin, this, &LessonPage::join);
            connect(channel, &PresenterCollab::learnerUnregister, this, [this](const QString& deviceId) {
                delete m_learners.take(deviceId);
                refresh();
            });
            connect(channel, &PresenterCollab::learnerPollResponse, this, &LessonPage::count);
            connect(channel, &PresenterCollab::remoteControl, this,
                    [this, self = channel->userToken()](const Calyx::RemoteControlMessage& message) {
                        if (message.from != self) // the bus brings our own "pause" back to us
                            obey(message.type, message.data.toMap());
                    });
            connect(channel, &PresenterCollab::controllerRegister, this,
                    [this] { m_remote->setText(tr("It has left.")); });
        },
        Qt::DirectConnection);
}

void LessonPage::setStage(Classroom::Stage stage, const QString& code)
{
    if (m_stage == Classroom::Ready)
        m_tally = Tally(); // the answers of the last lesson could be looked at until now
    m_stage = stage;
    m_code = code;
    m_isLocked = false;
    m_learners.clear();
    m_learnerList->clear();
    m_poll = NoPoll;
    refresh();
}

void LessonPage::join(const Calyx::Learner& learner)
{
    if (learner.deviceId.isEmpty() || m_learners.contains(learner.deviceId))
        return;
    auto* item =
        new QListWidgetItem(learner.userName.isEmpty() ? learner.deviceId : learner.userName, m_learnerList);
    item->setToolTip(learner.deviceType);
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable); // the tick is not the teacher's to set
    item->setCheckState(Qt::Unchecked);
    m_learners.insert(learner.deviceId, item);
    if (m_isLocked)
        showLock(learner.deviceId);
    refresh();
}

void LessonPage::chooseKind(int index)
{
    const PollKind& kind = PollKind::all().at(index);
    m_options->setRange(kind.fewest, kind.most);
    m_options->setValue(kind.options);
    refresh();
}

void LessonPage::startPoll()
{
    const PollKind kind = PollKind::all().at(m_kind->currentIndex());
    const int options = m_options->value();
    m_question = kind.name;
    m_tally = Tally(kind, options);
    m_isLocked = false; // the question takes the place of the text
    for (QListWidgetItem* learner : qAsConst(m_learners))
        learner->setCheckState(Qt::Unchecked);
    m_classroom->tell([=](Classroom* classroom) { classroom->startPoll(kind, options); });
    m_poll = Running;
    refresh();
    m_pause->setFocus(); // the button that was pressed is disabled now
}

void LessonPage::count(const QString& deviceId, const QString& answerId, int, const QString& answer)
{
    constexpr int redrawPause = 50; // ms; a class that answers at once redraws the chart once
    if (m_poll == NoPoll || answerId != m_answerId)
        return; // it comes too late
    m_tally.add(deviceId, answer);
    if (QListWidgetItem* learner = m_learners.value(deviceId))
        learner->setCheckState(Qt::Checked);
    if (!m_redraw.isActive())
        m_redraw.start(redrawPause);
}

void LessonPage::refresh()
{
    constexpr int mostBars = 10; // as many as one can read
    const bool isLive = m_stage == Classroom::Live;
    const bool isLost = m_stage == Classroom::Lost;
    const QString state = isLive ? tr("Learners join with this code.") : tr("Connection lost.");
    m_state->setText(
        isLive || isLost
            ? tr("<span style='font-size: 22pt'><b>%1</b></span>&nbsp; %2").arg(m_code.toHtmlEscaped(), state)
            : tr("Start a lesson, and learners can join."));
    m_start->setText(isLost ? tr("&Reconnect") : tr("Start &lesson"));
    m_pause->setText(m_poll == Paused ? tr("Res&ume") : tr("Pa&use"));
    m_learnerBox->setTitle(m_learners.isEmpty() ? tr("Learners")
                                                : tr("Learners (%1)").arg(m_learners.size()));
    const int answered = m_tally.answered();
    if (m_poll == NoPoll && answered == 0)
        m_answers->setText(tr("Start a poll: the answers appear here as they come in."));
    else if (m_poll == NoPoll)
        m_answers->setText(tr("%1 (over): %2 answered").arg(m_question).arg(answered));
    else
        m_answers->setText(tr("%1%2: %3 of %4 answered")
                               .arg(m_question, m_poll == Paused ? tr(" (paused)") : QString())
                               .arg(answered)
                               .arg(m_learners.size()));
    showAnswers(m_chart, m_tally.bars(mostBars));

    const QString notLive = isLive   ? QString()
                            : isLost ? tr("The connection is lost: reconnect first.")
                                     : tr("Start the lesson first.");
    const QString isOn = m_poll == NoPoll ? QString() : tr("A poll is running: stop it first.");
    const QString isOff = m_poll == NoPoll ? tr("No poll is running.") : QString();
    const QString isFixed = m_options->minimum() == m_options->maximum()
                                ? tr("This kind of poll has no number of options to choose.")
                                : QString();
    allow(m_start, {m_busy, isLive ? tr("The lesson is open.") : QString()});
    allow(m_end, {m_busy, isLive || isLost ? QString() : tr("No lesson is open.")});
    allow(m_logOut, {m_busy});
    allow(m_kind, {m_busy, notLive, isOn});
    allow(m_options, {m_busy, notLive, isOn, isFixed});
    allow(m_ask, {m_busy, notLive, isOn});
    allow(m_pause, {m_busy, notLive, isOff});
    allow(m_stop, {m_busy, notLive, isOff});
    m_cards->refresh(m_busy.isEmpty() ? notLive : m_busy);
    setFocusProxy(isLive ? static_cast<QWidget*>(m_kind) : m_start);
}

// Covers one device, or all, with a text until they are unlocked, or a poll starts. There is no message that
// takes a text away: another takes its place.
void LessonPage::showLock(const QString& deviceId)
{
    m_classroom->tellChannel([deviceId, isLocked = m_isLocked](PresenterCollab* channel) {
        const QString text = isLocked ? tr("Please look at your teacher.") : tr("You can go on.");
        PresenterAssessment(nullptr, channel).sendMessage(deviceId, text, !isLocked, false);
    });
}

// What the remote control wants is done as the buttons do it, where they can be pressed.
void LessonPage::obey(const QString& type, const QVariantMap& details)
{
    const auto pressPause = [this](PollState when) {
        if (m_poll == when)
            m_pause->click();
    };
    const auto lock = [this](bool isToLock) {
        if (isToLock == m_isLocked)
            return;
        m_isLocked = isToLock;
        showLock(QString());
    };
    const auto addPicture = [&] {
        const QString uri = details.value(QStringLiteral("url")).toString();
        auto picture = std::make_shared<QBuffer>();
        picture->setData(QByteArray::fromBase64(uri.section(QLatin1Char(','), 1).toLatin1()));
        m_cards->add(details.value(QStringLiteral("name")).toString(), picture);
    };
    const auto sayLesson = [](PresenterCollab* channel) {
        channel->sendCurrentLessonToRemote(QStringLiteral("desk"), tr("Lesson at the desk"));
    };
    const std::tuple<const char*, QString, std::function<void()>> commands[] = {
        {"pause", tr("Pause"), [&] { pressPause(Running); }},
        {"resume", tr("Resume"), [&] { pressPause(Paused); }},
        {"lockAll", tr("Lock all"), [&] { lock(true); }},
        {"unlockAll", tr("Unlock all"), [&] { lock(false); }},
        {"nextCard", tr("Next card"), [&] { m_cards->step(1); }},
        {"previousCard", tr("Previous card"), [&] { m_cards->step(-1); }},
        {"pushCurrentCard", tr("Show the card"), [&] { m_cards->showToLearners(); }},
        {"addImageCard", tr("Add a picture"), addPicture},
        {"presenterActive", tr("Is the desk there?"),
         [&] { m_classroom->tellChannel(&PresenterCollab::sendPresenterIsActiveToRemote); }},
        {"requestLessonInfo", tr("Which lesson is it?"), [&] { m_classroom->tellChannel(sayLesson); }},
        {"requestLesson", tr("Which card is it?"), [&] { m_cards->tellRemote(); }},
        {"stopSession", tr("End the lesson"), [&] { m_end->click(); }}};
    for (const auto& [command, words, run] : commands) {
        if (type == QLatin1String(command)) {
            m_remote->setText(tr("Its last command: %1").arg(words));
            run();
        }
    }
}
