#pragma once

#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "tests/support/FaultServer.h"

namespace test {

/// A catalog web service over the fault server, with contents that a test provides: the redirect, entity tags
/// that are the SHA-1 of the contents, 304 for a matching tag. It records which bodies it sent.
class ContentService
{
public:
    ContentService();

    std::string redirect() const { return mServer.url("/redirect"); }
    /// Offers a file under a name (UTF-8), or replaces its content.
    void offer(const std::string& name, const std::string& content);
    /// Sends this reply to every GET request for a file; HEAD requests get the sound reply.
    void spoil(const std::string& name, const FaultReply& reply);

    /// Sends this reply to every HEAD request for a file.
    void spoilHeader(const std::string& name, const FaultReply& reply);
    /// Cuts off every body after this many bytes; a range request gets the bytes that follow.
    void cutBodies(std::size_t bytes);
    /// Cuts off each body at the next of these places; bodies after the last place are whole.
    void cutBodiesInTurn(const std::vector<std::size_t>& places);
    /// Replaces each sound reply, also that of the redirect, by the result of `spoiler`. Null restores the
    /// sound replies. The spoiler runs on the thread of the connection.
    using Spoiler = std::function<FaultReply(const FaultReply& sound, const FaultRequest& request)>;
    void spoilWith(Spoiler spoiler);
    /// Sends this reply to every request from now on.
    void spoilAll(const FaultReply& reply);

    /// Names of the files whose bodies were sent since the last call, in order.
    std::vector<std::string> takeFetched();
    /// Waits at most 10 s until the service sends the body of this file.
    bool waitUntilFetched(const std::string& name);
    /// Names of the files that were requested since the last call, in order, including the index.
    std::vector<std::string> takeAsked();
    FaultServer& server() { return mServer; }

    static std::string sha1(const std::string& content);

private:
    FaultReply answer(const FaultRequest& request);
    FaultReply reply(const FaultRequest& request);

    std::mutex mMutex;
    std::condition_variable mChanged;
    std::map<std::string, std::string> mContents; ///< this and what follows guarded by mMutex
    std::map<std::string, FaultReply> mSpoilt;
    std::map<std::string, FaultReply> mSpoiltHeaders;
    std::size_t mCut = std::string::npos;
    std::vector<std::size_t> mCutsInTurn;
    Spoiler mSpoiler;
    std::vector<std::string> mFetched;
    std::vector<std::string> mAsked;
    FaultServer mServer; ///< last: its threads end before what they write to
};

} // namespace test
