#pragma once

#include "support/ChildProcess.h"

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/// A terminal with calyx-presenter in it. xterm.js tells what it shows, in a process of its own.
class Terminal : public ChildProcess
{
    Q_OBJECT

public:
    explicit Terminal(const QStringList& arguments, int columns = 80, int rows = 24);
    ~Terminal() override;

    void type(const QString& text);
    void resize(int columns, int rows);

    /// The lines of the screen, without blanks at their ends, those below the last text left out.
    QStringList screen() const { return m_lines; }
    QString text() const { return screen().join(QLatin1Char('\n')); }
    /// The last line that is not empty.
    QString lastLine() const { return screen().value(screen().size() - 1); }
    int cursorColumn() const { return m_column; }
    /// Whether the program has ended, and all that it has written is shown.
    bool hasEnded() const { return state() == QProcess::NotRunning && m_unshown == 0; }
    /// Whether input is edited and echoed by the terminal itself, as a shell leaves it.
    bool isCooked() const;
    /// Where the program keeps its files.
    QString data() const { return m_data.path(); }

protected:
    void prepareChild() override;

private:
    void read();
    void show(const QByteArray& line);
    void readScreen();

    QTemporaryDir m_data;
    int m_master = -1;
    int m_slave = -1;
    QProcess m_screen;
    int m_unshown = 0; // lines that the screen has not answered
    QStringList m_lines;
    int m_column = 0;
};
