#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace test {

/// A request as the server received it.
struct FaultRequest
{
    std::string method;
    std::string target; ///< path and query, as sent
    std::vector<std::string> headerLines;
    int connection = 0; ///< counted from 0 in the order of acceptance

    /// The target without its query.
    std::string path() const;
    /// The value of the first header with this name in any letter case, or an empty string.
    std::string header(const std::string& name) const;
};

/// A reply byte for byte, together with the way in which it fails. A named function makes a sound reply, and
/// further calls spoil it: `FaultReply::ok("body").cutAt(30).reset()`.
class FaultReply
{
public:
    using Milliseconds = std::chrono::milliseconds;
    enum class End
    {
        Keep,
        Close,
        Reset
    };

    /// Sends exactly these bytes, whatever the method.
    static FaultReply raw(const std::string& bytes);
    /// A sound reply with a Content-Length. A HEAD request gets it without the body.
    static FaultReply status(int code, const std::string& body = {},
                             const std::vector<std::string>& headerLines = {});
    static FaultReply ok(const std::string& body, const std::vector<std::string>& headerLines = {});
    static FaultReply redirect(const std::string& location, int code = 302, const std::string& body = {});
    static FaultReply chunked(const std::vector<std::string>& pieces,
                              const std::vector<std::string>& headerLines = {});
    /// A reply without a length; the end of the connection ends the body.
    static FaultReply untilClose(const std::string& body, const std::vector<std::string>& headerLines = {});
    /// The body compressed by gzip with its Content-Encoding, even if the request did not ask for it.
    static FaultReply gzipped(const std::string& body, const std::vector<std::string>& headerLines = {});
    /// The reply of a sound server that has a file with this content and entity tag (quotes included): 304 if
    /// the request has the tag, a range if it asks for one of this version, otherwise the whole file.
    static FaultReply file(const FaultRequest& request, const std::string& content, const std::string& tag);
    /// Reads the request and never replies.
    static FaultReply silence();

    /// Replaces all header lines of the same name by this line.
    FaultReply& withHeader(const std::string& line);
    FaultReply& withoutHeader(const std::string& name);
    FaultReply& withStatus(int code);
    /// Sends the body as one chunk, without a length.
    FaultReply& inChunks();
    /// Replaces the body and adapts the Content-Length.
    FaultReply& withBody(const std::string& body);

    /// Sends only the first `count` bytes of the whole reply, then closes the connection.
    FaultReply& cutAt(std::size_t count);
    /// Sends only the first `count` bytes of the body. The reply to a HEAD request stays complete.
    FaultReply& cutBodyAt(std::size_t count) { return cutAt(headSize() + count); }
    /// Closes the connection after the reply.
    FaultReply& close();
    /// Resets the connection after the reply.
    FaultReply& reset();
    /// Pauses before the byte at `offset` of the whole reply; 0 pauses before the reply. May be called
    /// several times.
    FaultReply& pauseAt(std::size_t offset, Milliseconds time);
    /// Sends the bytes before `offset`, then nothing more until the client disconnects.
    FaultReply& silentAt(std::size_t offset);
    FaultReply& silentInBodyAt(std::size_t offset) { return silentAt(headSize() + offset); }
    /// Sends pieces of `bytes` bytes with a pause after each.
    FaultReply& trickle(std::size_t bytes, Milliseconds pause);

    /// The bytes of the reply to a request with this method.
    std::string bytes(const std::string& method) const;
    /// The offset of the body in the whole reply.
    std::size_t headSize() const { return mHead.size(); }
    const std::string& body() const { return mBody; }
    bool isStatus(int code) const { return mHead.find(" " + std::to_string(code) + " ") == 8; }

private:
    friend class FaultServer;

    std::string mHead;
    std::string mBody;
    /// Whether a HEAD request gets the body too.
    bool mIsRaw = false;
    End mEnd = End::Keep;
    std::size_t mCut = std::string::npos;
    std::size_t mSilence = std::string::npos;
    std::map<std::size_t, Milliseconds> mPauses;
    std::size_t mPiece = std::string::npos;
    Milliseconds mPiecePause{0};
};

} // namespace test
