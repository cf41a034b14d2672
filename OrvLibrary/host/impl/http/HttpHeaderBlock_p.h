#pragma once

#include <string>

/// Collects the header block of one request's final answer, line by line. A status line after a finished
/// block starts a new block, so that only the last one is kept: an answer of 200 after one of 100, for
/// example. Other lines after a finished block are trailers of the body, and ignored.
class HttpHeaderBlock
{
public:
    /// Takes one line with its line end.
    void addLine(const std::string& line);

    /// The lines, folded ones unfolded, each ended by CR LF, with the blank line.
    const std::string& text() const { return mText; }
    /// Whether the blank line has come. A block without a blank line was cut.
    bool complete() const { return mComplete; }

private:
    std::string mText;
    bool mComplete = false;
};
