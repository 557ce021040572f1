#pragma once

#include "text/Style.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <cstdio>

/// The line at the bottom of the terminal in which a command is being typed.
class Prompt
{
public:
    virtual ~Prompt() = default;
    /// Rows of the prompt and its text that stand above the cursor's, on a terminal of that many columns.
    virtual int rowsAboveCursor(int columns) const = 0;
    /// Draws the prompt and its text where the terminal's cursor is.
    virtual void redraw() = 0;
    /// The terminal has another size now.
    virtual void resize() = 0;
};

/// Where everything is printed. On a terminal the last lines stay in place while text appears above them: a
/// live block (the chart of the running poll), then the prompt.
class Screen : public QObject
{
    Q_OBJECT

public:
    explicit Screen(bool quiet);
    ~Screen() override;

    const Style& style() const { return m_style; }
    /// Whether the live block is shown: standard output is a terminal that can move its cursor.
    bool isLive() const { return m_live; }
    /// For input that is echoed by the terminal itself: it would be in the way of the live block.
    void disableLive() { m_live = false; }

    /// Tells of progress; says nothing with --quiet.
    void note(const QString& text, Ink ink = Ink::Plain);
    /// Prints what was asked for.
    void print(const QString& text, Ink ink = Ink::Plain);
    void print(const QStringList& lines);
    /// Goes to standard error.
    void error(const QString& text);
    void diagnostic(const QString& text);

    void setLiveLines(const QStringList& lines);
    /// Null: there is no prompt (any more). Does not draw it.
    void setPrompt(Prompt* prompt) { m_prompt = prompt; }
    /// The prompt's line is done with: the cursor is \p rows below its first row. \p echo stays in its
    /// place above the live block.
    void enterLine(const QString& echo, int rows);
    /// Takes the live block and the prompt from the terminal, and puts them there again: around whatever
    /// changes the prompt's text, or uses the terminal.
    void hideBlock();
    void showBlock();
    /// To be called when the terminal's size may have changed, or when it was somebody else's for a while.
    void refresh();

private:
    void readSize();
    QString wrapped(const QString& text) const;
    QString eraser(int rowsOfPrompt) const;
    QString block() const;
    void update(const QString& text);
    void write(FILE* file, const QString& text) const;
    void writeError(const QString& text);

    Style m_style;
    bool m_quiet;
    bool m_live;
    QStringList m_lines;
    int m_drawn = 0; // rows of the block as it stands on the terminal
    Prompt* m_prompt = nullptr;
};
