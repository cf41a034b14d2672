#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace test {

/// A request as it came over the wire.
struct FaultRequest
{
    std::string method;
    std::string target; ///< path and query, as sent
    std::vector<std::string> headerLines;
    int connection = 0; ///< counted from 0 in the order of acceptance

    /// Target without its query.
    std::string path() const;
    /// Value of the first header of that name, whatever its letter case; empty when there is none.
    std::string header(const std::string& name) const;
};

/// What the server sends, byte for byte, and how badly. Made by one of the named functions, then spoilt:
/// `FaultReply::ok("body").cutAt(30).reset()`.
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

    /// Exactly these bytes, for any method.
    static FaultReply raw(const std::string& bytes);
    /// A sound answer with its Content-Length; a HEAD request gets it without the body.
    static FaultReply status(int code, const std::string& body = {},
                             const std::vector<std::string>& headerLines = {});
    static FaultReply ok(const std::string& body, const std::vector<std::string>& headerLines = {});
    static FaultReply redirect(const std::string& location, int code = 302, const std::string& body = {});
    static FaultReply chunked(const std::vector<std::string>& pieces,
                              const std::vector<std::string>& headerLines = {});
    /// The body that ends with the connection; no length is sent.
    static FaultReply untilClose(const std::string& body, const std::vector<std::string>& headerLines = {});
    /// The body packed by gzip, and said to be so, whatever the request would take.
    static FaultReply gzipped(const std::string& body, const std::vector<std::string>& headerLines = {});
    /// The answer of a sound server that has a file with this content and entity tag (its quotes included):
    /// 304 where the request has the tag, a range where it asks for one of this version, or the whole file.
    static FaultReply file(const FaultRequest& request, const std::string& content, const std::string& tag);
    /// Takes the request and never answers.
    static FaultReply silence();

    /// With this header line, and no other one of its name.
    FaultReply& withHeader(const std::string& line);
    FaultReply& withoutHeader(const std::string& name);
    FaultReply& withStatus(int code);
    /// With its body in one chunk, and no length.
    FaultReply& inChunks();
    /// With another body; its length is told as it is.
    FaultReply& withBody(const std::string& body);

    /// Sends the first `count` bytes of the whole reply only; then the connection is closed.
    FaultReply& cutAt(std::size_t count);
    /// The same with the first `count` bytes of the body; of a HEAD request's answer nothing is missing.
    FaultReply& cutBodyAt(std::size_t count) { return cutAt(headSize() + count); }
    /// Ends the connection after the reply.
    FaultReply& close();
    /// Ends it with a reset instead.
    FaultReply& reset();
    /// Waits before the byte at `offset` of the whole reply (0: before all of it); may be given several
    /// times.
    FaultReply& pauseAt(std::size_t offset, Milliseconds time);
    /// Sends the bytes before `offset`, then nothing more until the client goes.
    FaultReply& silentAt(std::size_t offset);
    FaultReply& silentInBodyAt(std::size_t offset) { return silentAt(headSize() + offset); }
    /// Sends pieces of so many bytes with a pause after each.
    FaultReply& trickle(std::size_t bytes, Milliseconds pause);

    /// The reply's bytes to a request of that method.
    std::string bytes(const std::string& method) const;
    /// Where the body starts.
    std::size_t headSize() const { return mHead.size(); }
    const std::string& body() const { return mBody; }
    bool isStatus(int code) const { return mHead.find(" " + std::to_string(code) + " ") == 8; }

private:
    friend class FaultServer;

    std::string mHead;
    std::string mBody;
    /// Whether the body goes to HEAD requests too.
    bool mIsRaw = false;
    End mEnd = End::Keep;
    std::size_t mCut = std::string::npos;
    std::size_t mSilence = std::string::npos;
    std::map<std::size_t, Milliseconds> mPauses;
    std::size_t mPiece = std::string::npos;
    Milliseconds mPiecePause{0};
};

} // namespace test
