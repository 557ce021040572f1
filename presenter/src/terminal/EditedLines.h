#pragma once

#include "commands/Completer.h"
#include "terminal/LineSource.h"
#include "terminal/Prompt.h"

#include <functional>
#include <memory>

class QSocketNotifier;
class Screen;

/// Lines typed at a terminal, with editing, history and completion; the event loop runs on meanwhile. The
/// editing library has one line at a time, so there can be one object of this class only.
class EditedLines : public LineSource, public Prompt
{
    Q_OBJECT

public:
    using Complete = std::function<Completer::Completion(const QString& lineToCursor)>;

    EditedLines(const QString& prompt, Screen& screen, Complete completer);
    ~EditedLines() override;

    void start() override;
    void stop() override;

    int rowsAboveCursor(int columns) const override;
    void redraw() override;
    void resize() override;

private:
    static void onLine(char* line);
    static int onTab(int count, int key);
    static int readCharacter(std::FILE* file);

    void install();
    void read();
    void take(const QString& line);
    void end();
    void complete();

    QString m_prompt;
    Screen& m_screen;
    Complete m_completer;
    std::unique_ptr<QSocketNotifier> m_notifier;
    bool m_active = false;
    bool m_inputGone = false;
};
