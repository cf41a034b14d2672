#pragma once

#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "tests/support/FaultServer.h"

namespace test {

/// A catalog web service with contents that a test gives it, over the fault server: the redirect, tags that
/// are the contents' SHA-1, 304 for a matching tag. It remembers which bodies travelled.
class ContentService
{
public:
    ContentService();

    std::string redirect() const { return mServer.url("/redirect"); }
    /// Offers a file under a name (UTF-8), or another content for it.
    void offer(const std::string& name, const std::string& content);
    /// Answers every download of a file, but not the question for its headers, like this.
    void spoil(const std::string& name, const FaultReply& reply);

    /// Answers every question for the headers of a file like this.
    void spoilHeader(const std::string& name, const FaultReply& reply);
    /// Every body that is sent is cut off after so many bytes; a request for a range gets the next ones.
    void cutBodies(std::size_t bytes);
    /// The same with another place for each body, in turn; those after the last one are whole.
    void cutBodiesInTurn(const std::vector<std::size_t>& places);
    /// Makes of each sound answer, that of the redirect too, what `spoiler` returns; null for none. Called on
    /// the connection's thread.
    using Spoiler = std::function<FaultReply(const FaultReply& sound, const FaultRequest& request)>;
    void spoilWith(Spoiler spoiler);
    /// Answers nothing soundly any more.
    void spoilAll(const FaultReply& reply);

    /// Names whose bodies were fetched since the last call, in order.
    std::vector<std::string> takeFetched();
    /// Waits until a body is being fetched, at most 10 s.
    bool waitUntilFetched(const std::string& name);
    /// Names that were asked for since the last call, in order, the index included.
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
