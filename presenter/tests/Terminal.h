#pragma once

#include <QByteArray>
#include <QObject>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QVector>

/// A terminal with calyx-presenter in it. It shows on its screen what a VT100 would.
class Terminal : public QProcess
{
    Q_OBJECT

public:
    explicit Terminal(const QStringList& arguments, int columns = 80, int rows = 24);
    ~Terminal() override;

    void type(const QString& text);
    void resize(int columns, int rows);

    /// The lines of the screen, without blanks at their ends, those below the last text left out.
    QStringList screen() const;
    QString text() const { return screen().join(QLatin1Char('\n')); }
    /// The last line that is not empty.
    QString lastLine() const { return screen().value(screen().size() - 1); }
    int cursorColumn() const { return m_column; }
    bool hasEnded() const { return state() == QProcess::NotRunning; }
    /// Whether input is edited and echoed by the terminal itself, as a shell leaves it.
    bool isCooked() const;

protected:
    void setupChildProcess() override;

private:
    void read();
    void take(const QString& characters);
    void put(QChar character);
    void newLine();
    void control(QChar final, int count);
    void clearLine(int from);

    int m_master = -1;
    int m_slave = -1;
    int m_columns;
    int m_rows;
    QVector<QString> m_lines;
    int m_row = 0;
    int m_column = 0;
    QByteArray m_bytes; // an unfinished character
    QString m_sequence; // an unfinished control sequence
};
