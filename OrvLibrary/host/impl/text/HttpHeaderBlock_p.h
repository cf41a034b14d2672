#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/// Collects the header lines of the final answer. A status line after a complete block starts a new one, so
/// only the last block is kept: for example that of 200, which follows 100. Other lines after a complete
/// block are trailers of the body, and are ignored.
class HttpHeaderBlock
{
public:
    /// Takes one line, with its line end.
    void addLine(const std::string& line);

    /// All lines, each ended by CR LF, with the blank line at the end. Folded lines are joined.
    const std::string& text() const { return mText; }
    /// The status of the final answer; 0 until its block is complete.
    std::int64_t status() const;
    /// The size of all lines received, including those of earlier blocks.
    std::size_t bytes() const { return mBytes; }

private:
    std::string mText;
    std::size_t mBytes = 0;
    bool mComplete = false;
};
