#pragma once

#include <cstddef>
#include <cstdint>
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
    /// The status of the final answer; 0 while its block is not complete. A block without a blank line was
    /// cut.
    std::int64_t status() const;
    /// Of all lines that have come, those that are not kept among them.
    std::size_t bytes() const { return mBytes; }

private:
    std::string mText;
    std::size_t mBytes = 0;
    bool mComplete = false;
};
