#pragma once

#include "terminal/LineSource.h"
#include "terminal/Screen.h"

#include <QTimer>

#include <functional>
#include <memory>

#include <termios.h>

class QSocketNotifier;

/// Lines typed at a terminal, with editing, history and completion; the event loop runs on meanwhile. The
/// editing library has one line at a time, so there can be one object of this class only.
class EditedLines : public LineSource, public Prompt
{
    Q_OBJECT

public:
    using Complete = std::function<Completion(const QString& lineToCursor)>;
    /// Whether a line must not be kept in the history.
    using IsSecret = std::function<bool(const QString& line)>;

    EditedLines(const QString& prompt, Screen& screen, Complete completer, IsSecret isSecret);
    ~EditedLines() override;

    void start() override;
    void stop() override;
    /// The prompt goes after a short while only, so that it does not flicker.
    void setBusy(bool isBusy) override;
    QStringList takeTyped() override;
    bool clearLine() override;
    void startHidden() override;
    bool isHiddenDone() const override { return m_isHiddenDone; }
    QString takeHidden() override;

    int rowsAboveCursor(int columns) const override;
    void redraw() override;
    void resize() override;

Q_SIGNALS:
    /// The prompt has gone, or is there again.
    void promptShown(bool isShown);

private:
    static void onLine(char* line);
    static int onTab(int count, int key);
    static int readCharacter(std::FILE* file);

    void install();
    void hidePrompt();
    bool removePrompt();
    void showPrompt();
    void read();
    void readHidden();
    void endHidden();
    void take(const QString& line);
    int rowsOf(const QString& line) const;
    void end();
    void complete();

    QString m_prompt;
    Screen& m_screen;
    Complete m_completer;
    IsSecret m_isSecret;
    std::unique_ptr<QSocketNotifier> m_notifier;
    QTimer m_hideSoon;
    QString m_kept; // the line that was being typed when the prompt went
    QByteArray m_hidden;
    std::unique_ptr<QSocketNotifier> m_secretNotifier;
    bool m_isHiddenDone = true;
    termios m_before = {}; // as the terminal was
    bool m_active = false;
    bool m_isHidden = false;
    bool m_inputGone = false;
};
