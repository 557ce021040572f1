#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QUrl>

#include <functional>
#include <memory>

class QProcess;

/// A program on loopback that the tests talk to. It ends when this object does, and also when the test
/// program dies; if the test has failed by then, the end of its output is shown.
class Peer
{
public:
    struct Program
    {
        QString name;    ///< the executable: its path, or its name when it is looked up
        QString package; ///< the Debian package to install where it is missing
        /// "@PORT@" stands for the peer's port, "@FOLDER@" for its temporary folder, "@CONFIG@" for the file
        /// that is made from the template.
        QStringList arguments;
        QString config;                ///< a template in tests/interop/config; empty when there is none
        QMap<QString, QString> values; ///< what "@NAME@" stands for in the template, beside the three above
        /// Whether it takes a free port by itself and says "listening URL". Otherwise it gets a free one, and
        /// is ready when it accepts connections there.
        bool saysPort = false;
    };

    Peer();
    explicit Peer(const Program& program);
    ~Peer();
    Q_DISABLE_COPY(Peer)

    /// What to run. Before start().
    void setProgram(const Program& program) { m_program = program; }
    /// Starts the program and waits until it is ready. After end() or kill() it gets the same port again.
    /// Returns what went wrong, for the test's message; empty when nothing did.
    QByteArray start();
    /// Asks the program to end, and waits for that.
    void end();
    /// Ends the program without asking.
    void kill();
    ///@{
    /// Freezes the program, and lets it go on.
    void stop();
    void goOn();
    ///@}

    quint16 port() const { return m_port; }
    QUrl url(const QString& scheme = QStringLiteral("http")) const;

    /// All output so far.
    QByteArray log() const;
    /// The lines of the output that begin with \p prefix, in order.
    QStringList lines(const QString& prefix) const;
    int count(const QString& prefix) const { return lines(prefix).size(); }
    /// Waits until as many lines begin with \p prefix. Runs the event loop meanwhile.
    bool waitFor(const QString& prefix, int count = 1) const;
    /// Waits for \p condition without the event loop, as a host does that is busy.
    static bool blockUntil(const std::function<bool()>& condition);

private:
    bool findProgram();
    bool launch();
    bool waitUntilReady();
    bool isReady();
    bool accepts() const;
    QString fill(QString text) const;
    bool writeConfig();
    bool fail(const QString& reason);

    Program m_program;
    QString m_executable;
    QTemporaryDir m_folder;
    std::unique_ptr<QProcess> m_process;
    qint64 m_begin = 0; // where the output of the present process begins
    quint16 m_port = 0;
    QString m_error;
};

/// Fails the test with what start() returned, unless that is empty.
#define VERIFY_STARTED(start)                                                                                \
    do {                                                                                                     \
        const QByteArray failure = start;                                                                    \
        QVERIFY2(failure.isEmpty(), failure.constData());                                                    \
    } while (false)
