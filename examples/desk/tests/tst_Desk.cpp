#include "Classmates.h"
#include "DeskRobot.h"
#include "Picture.h"

#include <CalyxClient/Lesson>

#include <QtNetwork>
#include <QtWidgets>

namespace {

/// Takes connections and never answers.
class SilentServer : public QTcpServer
{
public:
    SilentServer() { listen(QHostAddress::LocalHost); }
    QString url() const { return QStringLiteral("http://127.0.0.1:%1").arg(serverPort()); }
};

/// Passes everything on to a classroom, until it is cut off.
class Relay : public QTcpServer
{
public:
    explicit Relay(const QUrl& classroom)
    {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, [this, classroom] {
            QTcpSocket* const near = nextPendingConnection();
            auto* const far = new QTcpSocket(near);
            connect(near, &QTcpSocket::readyRead, far, [=] { far->write(near->readAll()); });
            connect(far, &QTcpSocket::readyRead, near, [=] { near->write(far->readAll()); });
            connect(far, &QTcpSocket::disconnected, near, &QTcpSocket::disconnectFromHost);
            connect(near, &QTcpSocket::disconnected, near, &QObject::deleteLater);
            far->connectToHost(classroom.host(), static_cast<quint16>(classroom.port()));
        });
    }
    QString url() const { return QStringLiteral("http://127.0.0.1:%1").arg(serverPort()); }
    /// Breaks all connections; new ones can be made.
    void cut()
    {
        const QList<QTcpSocket*> sockets = findChildren<QTcpSocket*>(QString(), Qt::FindDirectChildrenOnly);
        for (QTcpSocket* near : sockets)
            near->abort();
    }
};

NodeProgram* learners(const QString& url, int count)
{
    return new NodeProgram(QStringLiteral(DESK_CLASSROOM "/learners.js"),
                           {QStringLiteral("--url"), url, QStringLiteral("--session"), QStringLiteral("auto"),
                            QStringLiteral("--count"), QString::number(count), QStringLiteral("--quiet")});
}

QString answersInWords(const DeskRobot& desk)
{
    const auto* chart = desk.find<QTableView>("Answers");
    QStringList words;
    for (int row = 0; chart && chart->model() && row < chart->model()->rowCount(); ++row) {
        const auto cell = [&](int column) { return chart->model()->index(row, column).data().toString(); };
        words.append(cell(Calyx::PollResults::Label) + QStringLiteral(": ") +
                     cell(Calyx::PollResults::Count));
    }
    return words.join(QStringLiteral(", "));
}

void dropOnCards(DeskRobot& desk, const QString& file)
{
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(file)});
    QWidget* const deck = desk.find<QListWidget>("Cards")->parentWidget();
    const QPoint middle = deck->rect().center();
    QDragEnterEvent enter(middle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(deck, &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent drop(middle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(deck, &drop);
}

// As soon as the dialog is there: it keeps whoever has opened it.
void chooseInDialog(DeskRobot& desk, const QString& file)
{
    auto* const look = new QTimer(&desk.window());
    QObject::connect(look, &QTimer::timeout, &desk.window(), [&desk, look, file] {
        const auto* const dialog = desk.window().findChild<QFileDialog*>();
        auto* const name = dialog ? dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit")) : nullptr;
        if (!name || !name->isVisible())
            return;
        look->deleteLater();
        name->setText(file);
        QTest::keyClick(name, Qt::Key_Return);
    });
    look->start(10);
}

// Answers the question that a click asks, as soon as it is there.
void answerWith(DeskRobot& desk, const QString& text)
{
    auto* const look = new QTimer(&desk.window());
    QObject::connect(look, &QTimer::timeout, &desk.window(), [&desk, look, text] {
        const auto* const box = desk.window().findChild<QMessageBox*>();
        const QList<QAbstractButton*> buttons = box ? box->buttons() : QList<QAbstractButton*>();
        for (QAbstractButton* button : buttons) {
            if (button->text().remove(QLatin1Char('&')) == text) {
                look->deleteLater();
                QTest::mouseClick(button, Qt::LeftButton);
                return;
            }
        }
    });
    look->start(10);
}

QRect placeOf(const char* name, DeskRobot& desk)
{
    const QWidget* const widget = desk.find(name);
    return widget ? QRect(widget->mapTo(&desk.window(), QPoint()), widget->size()) : QRect();
}

int sumOf(const QString& words)
{
    int sum = 0;
    for (const QString& bar : words.split(QStringLiteral(", ")))
        sum += bar.section(QStringLiteral(": "), -1).toInt();
    return sum;
}

} // namespace

class tst_Desk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_classroom = std::make_unique<LocalClassroom>();
        QVERIFY2(!m_classroom->url().isEmpty(), "the classroom does not start");
    }

    void cleanup()
    {
        m_desk.reset();
        m_classroom.reset();
    }

    void saysWhyOneCannotLogInYet()
    {
        DeskRobot& desk = deskAt(m_classroom->url());
        QVERIFY(desk.show());
        QVERIFY(!desk.find("Log in")->isEnabled());
        QVERIFY(desk.find("Log in")->toolTip().contains(QStringLiteral("your password first")));
        QCOMPARE(DeskRobot::told(desk.find("Log in"), QAccessible::Description),
                 desk.find("Log in")->toolTip());
        desk.type("User name", QStringLiteral("teacher"));
        QVERIFY(!desk.find("Log in")->isEnabled());
        desk.type("Password", QStringLiteral("chalk"));
        QVERIFY(desk.find("Log in")->isEnabled());
    }

    void tellsAWrongPassword()
    {
        DeskRobot& desk = deskAt(m_classroom->url());
        QVERIFY(desk.logIn(QStringLiteral("cha\"lk")));
        QVERIFY(desk.reads(QStringLiteral("The user name or the password is wrong.")));
        QVERIFY(!desk.text().contains(QStringLiteral("login.error"))); // that is for the log
        QTRY_VERIFY(desk.find("Password")->hasFocus());
        QVERIFY(Picture::keep(&desk.window(), QStringLiteral("error"), placeOf("Service", desk)));
    }

    void tellsAnAddressWhereNothingIs()
    {
        const QString nowhere = SilentServer().url(); // closed again by now
        DeskRobot& desk = deskAt(nowhere);
        QVERIFY(desk.logIn());
        QVERIFY(desk.reads(QStringLiteral("The classroom service cannot be reached.")));
    }

    void canBeUsedWhileItWaits()
    {
        const SilentServer silent;
        DeskRobot& desk = deskAt(silent.url());
        QVERIFY(desk.logIn());
        QVERIFY(desk.find("Progress"));
        QVERIFY(!desk.find("Log in")->isEnabled());
        QVERIFY(desk.find("Log in")->toolTip().startsWith(QStringLiteral("The service is being asked")));
        QTRY_VERIFY(silent.hasPendingConnections());
        QElapsedTimer clock;
        clock.start();
        QVERIFY(desk.click("Cancel"));
        QVERIFY(desk.awaits("Log in"));
        QVERIFY2(clock.elapsed() < 9000, "it waited for the service's 10 seconds");
        QVERIFY(!desk.find("Progress"));
        // It can be tried again.
        desk.type("Service", m_classroom->url());
        desk.type("Password", QStringLiteral("chalk"));
        QVERIFY(desk.click("Log in"));
        QVERIFY(desk.awaits("Start lesson"));
    }

    void closesWhileItWaits()
    {
        SilentServer silent;
        DeskRobot& desk = deskAt(silent.url());
        QVERIFY(desk.logIn());
        QTRY_VERIFY(silent.hasPendingConnections());
        QTcpSocket* const connection = silent.nextPendingConnection();
        QTRY_VERIFY(connection->bytesAvailable() > 0);
        QElapsedTimer clock;
        clock.start();
        desk.close();
        QVERIFY2(clock.elapsed() < 9000, "it waited for the service's 10 seconds");
        QTRY_COMPARE(connection->state(), QAbstractSocket::UnconnectedState);
        QVERIFY(QApplication::topLevelWidgets().isEmpty());
    }

    void putsEveryKindOfPoll()
    {
        constexpr int count = 12;
        DeskRobot& desk = deskAt(m_classroom->url());
        const std::unique_ptr<NodeProgram> crowd(learners(m_classroom->url(), count));
        QVERIFY(!desk.startLesson().isNull());
        QVERIFY(desk.reads(QStringLiteral("Learners (%1)").arg(count)));
        const int kinds = desk.find<QComboBox>("Kind of poll")->count();
        QCOMPARE(kinds, Calyx::PollType::POLL_TYPE_STR().size());
        for (int kind = 0; kind < kinds; ++kind) {
            desk.find<QComboBox>("Kind of poll")->setCurrentIndex(kind);
            QVERIFY(desk.click("Start poll"));
            QVERIFY2(desk.reads(QStringLiteral("%1 of %1 answered").arg(count)),
                     qPrintable(desk.find<QComboBox>("Kind of poll")->currentText()));
            QCOMPARE(sumOf(answersInWords(desk)), count);
            QVERIFY(!desk.find("Start poll")->isEnabled());
            QCOMPARE(desk.find("Start poll")->toolTip(), QStringLiteral("A poll is running: stop it first."));
            QVERIFY(desk.click("Stop poll"));
        }
        answerWith(desk, QStringLiteral("Cancel"));
        QVERIFY(desk.click("End lesson"));
        QVERIFY(desk.find("End lesson")->isEnabled()); // it goes on
        answerWith(desk, QStringLiteral("End the lesson"));
        QVERIFY(desk.click("End lesson"));
        QVERIFY(desk.awaits("Start lesson"));
        // A device that is heard to join only after the first question is sent it again, and answers again.
        const QString seen = crowd->lineWith(QStringLiteral("learners: joined=%1 questions=1").arg(count));
        QVERIFY2(seen.endsWith(QStringLiteral(" decode-failures=0")), qPrintable(seen));
        QVERIFY(desk.click("Log out"));
        QVERIFY(desk.awaits("Service"));
    }

    void pausesAndResumes()
    {
        DeskRobot& desk = deskAt(m_classroom->url());
        remember(desk.startLesson());
        const std::unique_ptr<NodeProgram> remote(devices());
        QVERIFY(!remote->lineWith(QStringLiteral("joined")).isNull());
        QVERIFY(!desk.find("Pause")->isEnabled());
        QCOMPARE(desk.find("Pause")->toolTip(), QStringLiteral("No poll is running."));
        QVERIFY(desk.click("Start poll"));
        QVERIFY(desk.click("Pause"));
        QVERIFY(desk.reads(QStringLiteral("Multiple choice (paused)")));
        QVERIFY(!remote->lineWith(QStringLiteral("remote: pause")).isNull());
        QVERIFY(desk.click("Resume"));
        QVERIFY(desk.awaits("Pause"));
        QVERIFY(!remote->lineWith(QStringLiteral("remote: resume")).isNull());
    }

    void showsCardsFromFilesAndDrops()
    {
        DeskRobot& desk = deskAt(m_classroom->url());
        const std::unique_ptr<NodeProgram> crowd(learners(m_classroom->url(), 2));
        QVERIFY(!desk.startLesson().isNull());
        QVERIFY(desk.reads(QStringLiteral("Learners (2)")));
        QCOMPARE(desk.find("Show to learners")->toolTip(), QStringLiteral("Add a picture first."));

        chooseInDialog(desk, QStringLiteral(DESK_LEAF));
        QVERIFY(desk.click("Add picture\u2026"));
        QVERIFY(desk.reads(QStringLiteral("1 of 1")));
        QVERIFY(desk.click("Show to learners"));
        answerWith(desk, QStringLiteral("End the lesson"));
        QVERIFY(desk.click("End lesson"));
        QVERIFY(crowd->lineWith(QStringLiteral("learners: ")).contains(QStringLiteral("cards=1 ")));

        dropOnCards(desk, QStringLiteral(DESK_LEAF));
        QVERIFY(desk.reads(QStringLiteral("2 of 2")));
        QTest::keyClick(desk.find<QListWidget>("Cards"), Qt::Key_Up);
        QVERIFY(desk.reads(QStringLiteral("1 of 2")));
    }

    void refusesWhatIsNoPicture()
    {
        DeskRobot& desk = deskAt(m_classroom->url());
        QVERIFY(desk.logIn());
        QVERIFY(desk.awaits("Start lesson"));
        dropOnCards(desk, QStringLiteral(DESK_TESTS "/devices.mjs"));
        QVERIFY(desk.reads(QStringLiteral("devices.mjs cannot be a card")));
        QVERIFY(desk.click("Dismiss"));
        QVERIFY(!desk.find("Dismiss"));
    }

    void showsWhatLearnersWriteAsItIs()
    {
        DeskRobot& desk = deskAt(m_classroom->url());
        remember(desk.startLesson());
        const std::unique_ptr<NodeProgram> remote(devices({QStringLiteral("<img src=f>=x<3")}));
        QVERIFY(desk.reads(QStringLiteral("Learners (1)")));
        desk.find<QComboBox>("Kind of poll")->setCurrentText(QStringLiteral("Text"));
        desk.type("Question", QStringLiteral("Is x<3?"));
        QVERIFY(desk.click("Start poll"));
        QVERIFY(desk.reads(QStringLiteral("1 of 1 answered")));
        QCOMPARE(answersInWords(desk), QStringLiteral("x<3: 1"));
        QCOMPARE(desk.find<QListView>("Learners")->model()->index(0, 0).data().toString(),
                 QStringLiteral("<img src=f>"));
        int labels = 0;
        for (const QLabel* label : desk.window().findChildren<QLabel*>()) {
            if (label->text().contains(QStringLiteral("x<3"))) {
                ++labels;
                QCOMPARE(label->textFormat(), Qt::PlainText);
            }
        }
        QCOMPARE(labels, 1);
    }

    void keepsWhatCameOfTheLesson()
    {
        const QTemporaryDir folder;
        const QString file = folder.filePath(QStringLiteral("results.csv"));
        DeskRobot& desk = deskAt(m_classroom->url());
        const std::unique_ptr<NodeProgram> crowd(learners(m_classroom->url(), 2));
        QVERIFY(!desk.startLesson().isNull());
        QVERIFY(desk.reads(QStringLiteral("Learners (2)")));
        desk.type("Question", QStringLiteral("Which one?"));
        desk.type("Options", QStringLiteral("red; green"));
        desk.type("Right answer", QStringLiteral("A"));
        QVERIFY(desk.click("Start poll"));
        QVERIFY(desk.reads(QStringLiteral("Which one?: 2 of 2 answered")));
        QVERIFY(desk.click("Show results"));
        QVERIFY(desk.click("Stop poll"));
        desk.find<QTabWidget>("What is asked")->setCurrentIndex(1);
        QVERIFY(desk.click("Add question"));
        QVERIFY(desk.click("Start assessment"));
        const QAbstractItemModel* const sheet = desk.find<QTableView>("Answers by learner")->model();
        QTRY_COMPARE(sheet->property("finished").toInt(), 2);
        QVERIFY(desk.click("Stop assessment"));

        chooseInDialog(desk, file);
        QVERIFY(desk.click("Save results\u2026"));
        QFile saved(file);
        QVERIFY(saved.open(QIODevice::ReadOnly));
        QCOMPARE(saved.readAll().count("Which one?"), 4); // of two learners, in the poll and the assessment
        QTimer::singleShot(0, &desk.window(), [&desk] {
            auto* const summary = desk.window().findChild<QDialog*>();
            QCOMPARE(summary->findChild<QTreeWidget*>()->topLevelItemCount(), 2);
            summary->reject();
        });
        QVERIFY(desk.click("Summary\u2026"));
    }

    void locksAndSendsAway()
    {
        DeskRobot& desk = deskAt(m_classroom->url());
        remember(desk.startLesson());
        const std::unique_ptr<NodeProgram> remote(
            devices({QStringLiteral("Amara=0"), QStringLiteral("Bea=none")}));
        QVERIFY(desk.reads(QStringLiteral("Learners (2)")));
        QVERIFY(desk.click("Lock"));
        QVERIFY(!remote->lineWith(QStringLiteral("Bea: dialogShow")).isNull());
        QVERIFY(desk.click("Start poll")); // takes the lock away
        QVERIFY(!desk.find<QPushButton>("Lock")->isChecked());
        QVERIFY(desk.reads(QStringLiteral("1 of 2 answered")));
        QVERIFY(desk.click("Not answered yet"));
        auto* const list = desk.find<QListView>("Learners");
        QTRY_COMPARE(list->model()->rowCount(), 1);
        list->setCurrentIndex(list->model()->index(0, 0));
        QVERIFY(desk.click("Remove"));
        QVERIFY(desk.reads(QStringLiteral("Learners (1)")));
        QVERIFY(!remote->lineWith(QStringLiteral("Bea: disconnect")).isNull());
    }

    void obeysTheRemoteControl()
    {
        DeskRobot& desk = deskAt(m_classroom->url());
        remember(desk.startLesson());
        const std::unique_ptr<NodeProgram> remote(devices({QStringLiteral("Amara=none")}));
        QVERIFY(!remote->lineWith(QStringLiteral("joined")).isNull());
        dropOnCards(desk, QStringLiteral(DESK_LEAF));
        QVERIFY(desk.reads(QStringLiteral("1 of 1")));
        QVERIFY(!remote->lineWith(QStringLiteral("remote: currentCard {\"currentCard\":\"1\"")).isNull());

        remote->say(QStringLiteral("presenterActive"));
        QVERIFY(!remote->lineWith(QStringLiteral("remote: presenterIsActive")).isNull());
        remote->say(QStringLiteral("requestLessonInfo"));
        QVERIFY(remote->lineWith(QStringLiteral("remote: currentLesson"))
                    .contains(QStringLiteral("at the desk")));

        QFile leaf(QStringLiteral(DESK_LEAF));
        QVERIFY(leaf.open(QIODevice::ReadOnly));
        remote->say(QStringLiteral("addImageCard {\"name\":\"leaf\",\"url\":\"data:image/png;base64,%1\"}")
                        .arg(QString::fromLatin1(leaf.readAll().toBase64())));
        QVERIFY(desk.reads(QStringLiteral("2 of 2")));
        remote->say(QStringLiteral("previousCard"));
        QVERIFY(desk.reads(QStringLiteral("1 of 2")));
        remote->say(QStringLiteral("nextCard"));
        QVERIFY(desk.reads(QStringLiteral("2 of 2")));
        QVERIFY(desk.reads(QStringLiteral("Next card")));

        QVERIFY(desk.click("Start poll"));
        QVERIFY(desk.awaits("Pause"));
        remote->say(QStringLiteral("pause"));
        QVERIFY(desk.awaits("Resume"));
        remote->say(QStringLiteral("resume"));
        QVERIFY(desk.awaits("Pause"));
        remote->say(QStringLiteral("lockAll"));
        QVERIFY(remote->lineWith(QStringLiteral("Amara: dialogShow"))
                    .contains(QStringLiteral("look at your teacher")));
        remote->say(QStringLiteral("unlockAll"));
        QVERIFY(!remote->lineWith(QStringLiteral("Amara: dialogShow"), QStringLiteral("You can go on."))
                     .isNull());
        const std::unique_ptr<NodeProgram> crowd(learners(m_classroom->url(), 2));
        QVERIFY(desk.reads(QStringLiteral("Learners (3)")));
        remote->say(QStringLiteral("pushCurrentCard"));
        remote->say(QStringLiteral("stopSession"));
        QVERIFY(desk.awaits("Start lesson"));
        QVERIFY(crowd->lineWith(QStringLiteral("learners: ")).contains(QStringLiteral("cards=1 ")));
    }

    void endsTheLessonWhenItIsClosed()
    {
        DeskRobot& desk = deskAt(m_classroom->url());
        const std::unique_ptr<NodeProgram> crowd(learners(m_classroom->url(), 2));
        QVERIFY(!desk.startLesson().isNull());
        QVERIFY(desk.reads(QStringLiteral("Learners (2)")));
        answerWith(desk, QStringLiteral("Close the desk"));
        desk.close();
        QVERIFY(!crowd->lineWith(QStringLiteral("learners: joined=2")).isNull());
    }

    void tellsALostConnection()
    {
        DeskRobot& desk = deskAt(m_classroom->url());
        QVERIFY(!desk.startLesson().isNull());
        m_classroom->kill();
        QVERIFY(m_classroom->waitForFinished());
        QVERIFY(desk.reads(QStringLiteral("The connection is lost. Trying again")));
        QVERIFY(desk.find("Start poll")->isEnabled()); // done when it is back
        QVERIFY(desk.find("Try now")->isEnabled());
        QVERIFY(desk.click("End lesson"));
        QVERIFY(desk.awaits("Start lesson"));
    }

    void takesALostLessonUpAgain()
    {
        Relay relay(QUrl(m_classroom->url()));
        DeskRobot& desk = deskAt(relay.url());
        const std::unique_ptr<NodeProgram> crowd(learners(m_classroom->url(), 2));
        QVERIFY(!desk.startLesson().isNull());
        QVERIFY(desk.reads(QStringLiteral("Learners (2)")));
        relay.cut();
        QVERIFY(desk.reads(QStringLiteral("The connection is lost")));
        QTRY_VERIFY(!desk.text().contains(QStringLiteral("is lost")));
        QVERIFY(desk.reads(QStringLiteral("Learners (2)")));
        QVERIFY(desk.click("Start poll"));
        QVERIFY(desk.reads(QStringLiteral("2 of 2 answered")));
        QVERIFY(!desk.text().contains(QStringLiteral("is lost")));
    }

    void worksByKeyboard()
    {
        DeskRobot& desk = deskAt(m_classroom->url());
        QVERIFY(desk.show());
        QVERIFY(desk.find("User name")->hasFocus());
        QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("teacher"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("chalk"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QVERIFY(desk.awaits("Start lesson"));
        QTRY_VERIFY(desk.find("Start lesson")->hasFocus());
        desk.press(Qt::Key_L);
        QVERIFY(desk.awaits("Start poll"));
        QTRY_VERIFY(desk.find("Kind of poll")->hasFocus());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
        QCOMPARE(desk.find<QComboBox>("Kind of poll")->currentText(), QStringLiteral("True or false"));
        desk.press(Qt::Key_P);
        QVERIFY(desk.awaits("Pause"));
        desk.press(Qt::Key_U);
        QVERIFY(desk.awaits("Resume"));
        desk.press(Qt::Key_T);
        QVERIFY(desk.awaits("Start poll"));
        desk.press(Qt::Key_E);
        QVERIFY(desk.awaits("Start lesson"));
        desk.press(Qt::Key_O);
        QVERIFY(desk.awaits("Service"));
    }

    void namesAllThatCanBeUsed()
    {
        DeskRobot& desk = deskAt(m_classroom->url());
        QVERIFY(desk.show());
        int controls = 0;
        const QList<QWidget*> widgets = desk.window().findChildren<QWidget*>();
        for (QWidget* widget : widgets) {
            // What a control is made of goes by the control's name.
            const bool isPart = widget->window() != &desk.window() ||
                                (widget->parentWidget()->focusPolicy() & Qt::TabFocus) != 0;
            if (!(widget->focusPolicy() & Qt::TabFocus) || isPart)
                continue;
            ++controls;
            const QString name = DeskRobot::told(widget, QAccessible::Name);
            QVERIFY2(!name.isEmpty(), widget->metaObject()->className());
            QVERIFY2(!DeskRobot::told(widget, QAccessible::Description).isEmpty() ||
                         widget->inherits("QGraphicsView"),
                     qPrintable(name));
        }
        QCOMPARE(controls, 36);
    }

    // A class whose answers are always the same, so that the picture is; only how to join differs.
    void looksAsInThePictures()
    {
        DeskRobot& desk = deskAt(m_classroom->url());
        QVERIFY(desk.show());
        QVERIFY(Picture::keep(&desk.window(), QStringLiteral("login"), placeOf("Service", desk)));
        remember(desk.startLesson());
        const QStringList answers = {
            QStringLiteral("Amara=1"),     QStringLiteral("Bea=1"),     QStringLiteral("Chidi=0"),
            QStringLiteral("Dilan=1"),     QStringLiteral("Elif=2"),    QStringLiteral("Farid=1"),
            QStringLiteral("Greta=3"),     QStringLiteral("Hana=none"), QStringLiteral("Ines=0"),
            QStringLiteral("Jos\u00e9=1"), QStringLiteral("Kofi=2"),    QStringLiteral("Lena=none")};
        const std::unique_ptr<NodeProgram> remote(devices(answers));
        QVERIFY(desk.reads(QStringLiteral("Learners (12)")));
        dropOnCards(desk, QStringLiteral(DESK_LEAF));
        QVERIFY(desk.reads(QStringLiteral("1 of 1")));
        QVERIFY(!remote->lineWith(QStringLiteral("joined")).isNull());
        remote->say(QStringLiteral("pushCurrentCard"));
        QVERIFY(desk.reads(QStringLiteral("Its last command: Show the card")));
        QVERIFY(desk.click("Start poll"));
        QVERIFY(desk.reads(QStringLiteral("10 of 12 answered")));
        QCOMPARE(answersInWords(desk), QStringLiteral("A: 2, B: 5, C: 2, D: 1"));
        QAccessibleInterface* const names =
            QAccessible::queryAccessibleInterface(desk.find<QListView>("Learners"));
        for (int i = 0; i < names->childCount(); ++i)
            QCOMPARE(bool(names->child(i)->state().checked), !answers.at(i).endsWith(QLatin1String("none")));
        QVERIFY(desk.reads(QStringLiteral("Only this machine can reach that address")));
        QVERIFY(Picture::keep(&desk.window(), QStringLiteral("lesson"),
                              QRect(QPoint(), placeOf("Start lesson", desk).bottomLeft())));
    }

private:
    DeskRobot& deskAt(const QString& server)
    {
        m_desk = std::make_unique<DeskRobot>(server);
        return *m_desk;
    }

    NodeProgram* devices(const QStringList& answering = {})
    {
        return new NodeProgram(QStringLiteral(DESK_TESTS "/devices.mjs"),
                               QStringList{QStringLiteral(DESK_CLASSROOM), m_classroom->url(), m_code} +
                                   answering);
    }
    void remember(const QString& code) { m_code = code; }

    std::unique_ptr<LocalClassroom> m_classroom;
    std::unique_ptr<DeskRobot> m_desk;
    QString m_code;
};

int main(int argc, char** argv)
{
    for (const char* name :
         {"http_proxy", "https_proxy", "all_proxy", "HTTP_PROXY", "HTTPS_PROXY", "ALL_PROXY"})
        qunsetenv(name);
    // Nothing here needs a window manager or an X server, and this platform draws the same pixels without.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false")); // the library's notes
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setFont(QFont(QStringLiteral("Open Sans"), 10)); // the same pictures everywhere
    tst_Desk test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_Desk.moc"
