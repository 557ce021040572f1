#pragma once

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
