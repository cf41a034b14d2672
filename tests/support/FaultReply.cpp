#include "tests/support/FaultReply.h"

#include <algorithm>
#include <cstdio>

#include <strings.h>

namespace test {

namespace {

std::string phrase(int code)
{
    static const std::map<int, std::string> phrases{{200, "OK"},
                                                    {206, "Partial Content"},
                                                    {301, "Moved"},
                                                    {302, "Found"},
                                                    {304, "Unchanged"},
                                                    {403, "Forbidden"},
                                                    {429, "Too Many Requests"},
                                                    {500, "Broken"},
                                                    {404, "Not Found"},
                                                    {503, "Unavailable"}};
    const auto found = phrases.find(code);
    return found == phrases.end() ? "Status" : found->second;
}

std::string head(int code, const std::vector<std::string>& headerLines)
{
    std::string text = "HTTP/1.1 " + std::to_string(code) + " " + phrase(code) + "\r\n";
    for (const std::string& line : headerLines)
        text += line + "\r\n";
    return text;
}

} // namespace

std::string FaultRequest::path() const
{
    return target.substr(0, target.find('?'));
}

std::string FaultRequest::header(const std::string& name) const
{
    for (const std::string& line : headerLines) {
        const std::size_t colon = line.find(':');
        if (colon == name.size() && strncasecmp(line.c_str(), name.c_str(), colon) == 0)
            return line.substr(std::min(line.find_first_not_of(' ', colon + 1), line.size()));
    }
    return {};
}

FaultReply FaultReply::raw(const std::string& bytes)
{
    FaultReply reply;
    reply.mBody = bytes;
    reply.mIsRaw = true;
    return reply;
}

FaultReply FaultReply::status(int code, const std::string& body, const std::vector<std::string>& headerLines)
{
    FaultReply reply;
    reply.mHead = head(code, headerLines) + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n";
    reply.mBody = body;
    return reply;
}

FaultReply FaultReply::ok(const std::string& body, const std::vector<std::string>& headerLines)
{
    return status(200, body, headerLines);
}

FaultReply FaultReply::redirect(const std::string& location, int code)
{
    return status(code, {}, {"Location: " + location});
}

FaultReply FaultReply::chunked(const std::vector<std::string>& pieces,
                               const std::vector<std::string>& headerLines)
{
    FaultReply reply;
    reply.mHead = head(200, headerLines) + "Transfer-Encoding: chunked\r\n\r\n";
    for (const std::string& piece : pieces) {
        char size[32];
        std::snprintf(size, sizeof size, "%zx\r\n", piece.size());
        reply.mBody += size + piece + "\r\n";
    }
    reply.mBody += "0\r\n\r\n";
    return reply;
}

FaultReply FaultReply::untilClose(const std::string& body, const std::vector<std::string>& headerLines)
{
    FaultReply reply;
    reply.mHead = head(200, headerLines) + "Connection: close\r\n\r\n";
    reply.mBody = body;
    reply.mEnd = End::Close;
    return reply;
}

FaultReply FaultReply::silence()
{
    FaultReply reply = raw({});
    reply.mSilence = 0;
    return reply;
}

FaultReply& FaultReply::cutAt(std::size_t count)
{
    mCut = count;
    if (mEnd == End::Keep)
        mEnd = End::Close;
    return *this;
}

FaultReply& FaultReply::close()
{
    mEnd = End::Close;
    return *this;
}

FaultReply& FaultReply::reset()
{
    mEnd = End::Reset;
    return *this;
}

FaultReply& FaultReply::pauseAt(std::size_t offset, Milliseconds time)
{
    mPauses[offset] = time;
    return *this;
}

FaultReply& FaultReply::silentAt(std::size_t offset)
{
    mSilence = offset;
    return *this;
}

FaultReply& FaultReply::trickle(std::size_t bytes, Milliseconds pause)
{
    mPiece = std::max<std::size_t>(bytes, 1);
    mPiecePause = pause;
    return *this;
}

std::string FaultReply::bytes(const std::string& method) const
{
    const bool hasBody = mIsRaw || method != "HEAD";
    return (hasBody ? mHead + mBody : mHead).substr(0, mCut);
}

} // namespace test
