#include "tests/support/FaultReply.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include <strings.h>
#include <zlib.h>

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
                                                    {416, "No Such Range"},
                                                    {429, "Too Many Requests"},
                                                    {500, "Broken"},
                                                    {404, "Not Found"},
                                                    {503, "Unavailable"},
                                                    {511, "Network Authentication Required"}};
    const auto found = phrases.find(code);
    return found == phrases.end() ? "Status" : found->second;
}

/// Compresses `text` in the gzip format.
std::string gzip(const std::string& text)
{
    constexpr int kGzipWindow = 15 + 16;
    z_stream stream{};
    if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kGzipWindow, 8, Z_DEFAULT_STRATEGY) != Z_OK)
        throw std::runtime_error("no gzip");
    std::string packed(deflateBound(&stream, text.size()) + 32, '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    deflate(&stream, Z_FINISH);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

/// The position of the header line with this name, or npos.
std::size_t findHeader(const std::string& head, const std::string& name)
{
    for (std::size_t at = head.find("\r\n"); at != std::string::npos; at = head.find("\r\n", at + 2)) {
        const char* const line = head.c_str() + at + 2;
        if (strncasecmp(line, name.c_str(), name.size()) == 0 && line[name.size()] == ':')
            return at + 2;
    }
    return std::string::npos;
}

std::string head(int code, const std::vector<std::string>& headerLines)
{
    std::string text = "HTTP/1.1 " + std::to_string(code) + " " + phrase(code) + "\r\n";
    for (const std::string& line : headerLines)
        text += line + "\r\n";
    return text;
}

/// Encodes the pieces as chunks and adds the empty last chunk.
std::string chunks(const std::vector<std::string>& pieces)
{
    std::string text;
    for (const std::string& piece : pieces) {
        char size[32];
        std::snprintf(size, sizeof size, "%zx\r\n", piece.size());
        text += size + piece + "\r\n";
    }
    return text + "0\r\n\r\n";
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

FaultReply FaultReply::redirect(const std::string& location, int code, const std::string& body)
{
    return status(code, body, {"Location: " + location});
}

FaultReply FaultReply::chunked(const std::vector<std::string>& pieces,
                               const std::vector<std::string>& headerLines)
{
    FaultReply reply;
    reply.mHead = head(200, headerLines) + "Transfer-Encoding: chunked\r\n\r\n";
    reply.mBody = chunks(pieces);
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

FaultReply FaultReply::gzipped(const std::string& body, const std::vector<std::string>& headerLines)
{
    return ok(gzip(body), headerLines).withHeader("Content-Encoding: gzip");
}

FaultReply FaultReply::file(const FaultRequest& request, const std::string& content, const std::string& tag)
{
    const std::string tagLine = "ETag: " + tag;
    if (request.header("If-None-Match") == tag)
        return status(304, {}, {tagLine});
    const std::string range = request.header("Range");
    if (range.rfind("bytes=", 0) != 0 || request.header("If-Range") != tag)
        return ok(content, {tagLine});
    const std::size_t from = std::stoul(range.substr(6));
    const std::string size = std::to_string(content.size());
    if (from >= content.size())
        return status(416, {}, {"Content-Range: bytes */" + size});
    return status(206, content.substr(from),
                  {tagLine, "Content-Range: bytes " + std::to_string(from) + "-" +
                                std::to_string(content.size() - 1) + "/" + size});
}

FaultReply FaultReply::silence()
{
    FaultReply reply = raw({});
    reply.mSilence = 0;
    return reply;
}

FaultReply& FaultReply::withHeader(const std::string& line)
{
    withoutHeader(line.substr(0, line.find(':')));
    mHead.insert(mHead.size() - 2, line + "\r\n");
    return *this;
}

FaultReply& FaultReply::withoutHeader(const std::string& name)
{
    for (std::size_t at = findHeader(mHead, name); at != std::string::npos; at = findHeader(mHead, name))
        mHead.erase(at, mHead.find("\r\n", at) + 2 - at);
    return *this;
}

FaultReply& FaultReply::withStatus(int code)
{
    mHead.replace(0, mHead.find("\r\n") + 2, head(code, {}));
    return *this;
}

FaultReply& FaultReply::inChunks()
{
    mBody = chunks({mBody});
    return withoutHeader("Content-Length").withHeader("Transfer-Encoding: chunked");
}

FaultReply& FaultReply::withBody(const std::string& body)
{
    mBody = body;
    return withHeader("Content-Length: " + std::to_string(body.size()));
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
