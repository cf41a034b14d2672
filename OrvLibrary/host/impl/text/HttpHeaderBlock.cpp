#include "OrvLibrary/host/impl/text/HttpHeaderBlock_p.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace {

constexpr std::int64_t kFirstFinalStatus = 200;
constexpr std::string_view kBlanks = " \t";

std::string withoutLineEnd(std::string line)
{
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r'))
        line.pop_back();
    return line;
}

/// Joins a folded line to the line before it, with one blank between them.
void unfold(std::string& text, const std::string& line)
{
    const std::size_t start = std::min(line.find_first_not_of(kBlanks), line.size());
    text.erase(text.size() - 2);
    text += ' ' + line.substr(start) + "\r\n";
}

} // namespace

void HttpHeaderBlock::addLine(const std::string& line)
{
    mBytes += line.size();
    const std::string content = withoutLineEnd(line);
    if (mComplete) {
        if (content.compare(0, 5, "HTTP/") != 0)
            return;
        mText.clear();
        mComplete = false;
    }
    if (content.empty()) {
        mText += "\r\n";
        mComplete = true;
    } else if (kBlanks.find(content.front()) != kBlanks.npos && !mText.empty()) {
        unfold(mText, content);
    } else {
        mText += content + "\r\n";
    }
}

std::int64_t HttpHeaderBlock::status() const
{
    // The transfer library has checked that the line looks like "HTTP/1.1 200 OK".
    const std::size_t blank = mText.find(' ');
    if (!mComplete || blank == std::string::npos)
        return 0;
    const std::int64_t status = std::atoi(mText.c_str() + blank);
    return status >= kFirstFinalStatus ? status : 0;
}
