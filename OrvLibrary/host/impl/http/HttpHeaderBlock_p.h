#pragma once

#include <string>

/// Collects the header block of one request's final answer from the lines as they arrive. A status line after
/// a finished block starts anew, so that blocks of interim answers vanish; what follows the body is no
/// header.
class HttpHeaderBlock
{
public:
    /// Takes one line with its line end.
    void addLine(const std::string& line);

    /// The lines, folded ones unfolded, each ended by CR LF, with the blank line.
    const std::string& text() const { return mText; }
    /// Whether the blank line has come. A block without it was cut.
    bool complete() const { return mComplete; }

private:
    std::string mText;
    bool mComplete = false;
};
