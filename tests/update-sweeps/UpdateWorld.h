#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "OrvLibrary/host/impl/http/CurlService_p.h"
#include "tests/catalog/UpdateRun.h"
#include "tests/support/FaultServer.h"
#include "tests/support/ScopedHost.h"
#include "tests/support/SlotRecorder.h"
#include "tests/support/SweepCells.h"

namespace test {

/// The kinds of request that an update makes.
enum class RequestKind
{
    Redirect,
    Index,
    Header,
    Page,    ///< the page of a file that is not found
    Body,    ///< of a core catalog
    Archive, ///< of a bonus catalog
    Other
};
const std::vector<RequestKind>& spoiltKinds();
const char* kindName(RequestKind kind);

/// A small library with something of each kind to update, the web service that has the new files, and the
/// promise that a disturbed run keeps: see `expectNothingLost` and `expectConverges`.
class UpdateWorld
{
public:
    using Spoiler = std::function<FaultReply(const FaultReply& sound, const FaultRequest&)>;

    UpdateWorld();
    ~UpdateWorld();

    /// Lets every answer that is not spoilt take so long until the next `expectConverges`.
    void setDelay(std::chrono::milliseconds delay);

    /// The library as it was before any run, and a service that answers well.
    void reset();
    /// Answers the requests of one kind so; of headers and bodies, those of the catalog "Doors" alone.
    void spoil(RequestKind kind, Spoiler spoiler);
    /// Called at the start of every request, on the connection's thread, with its number from 1.
    void onRequest(std::function<void(std::size_t)> hook);

    /// One update with the host object `recorder()`, through a download service with short time limits.
    void run();
    /// The same by `runner`, which finds the download service installed.
    void run(const std::function<void()>& runner);
    /// Null once a test has destroyed it.
    std::unique_ptr<SlotRecorder>& recorder() { return mRecorder; }
    LibraryCatalogUpdate::LibraryCatalogUpdater updater();
    ScopedHost& host() { return mHost; }
    std::size_t requestCount() const;
    /// The service's own answer to a request.
    FaultReply soundAnswer(RequestKind kind) const;

    /// Every data file holds its old or its new content, every stored tag of a new file stands beside the new
    /// file, nothing lies outside the places that belong to an update, and the run was closed once.
    /// @param anyContent lets downloaded files hold anything, for a service that lied about them
    void expectNothingLost(bool anyContent = false) const;
    /// What a host does before its next run: puts whole catalogs that were left over into their places.
    void recoverLeftOvers();
    /// Every file is as an undisturbed first run, in turn, leaves it.
    void expectNew() const;
    /// A run that nobody disturbs, by a near service, leads to the state that an undisturbed first run leads
    /// to.
    void expectConverges();

private:
    using Tree = std::map<std::string, std::string>;

    FaultReply answer(const FaultRequest& request);
    FaultReply soundAnswer(const std::string& name, const FaultRequest& request) const;
    void writeOld();
    Tree snapshot() const;
    void expectKnownContent(const std::string& name, const std::string& content) const;
    void expectTagsFit(const std::string& hashFile, const Tree& tree) const;

    ScopedHost mHost;
    FaultServer mServer;
    std::unique_ptr<SlotRecorder> mRecorder;
    Tree mOld;
    /// After an undisturbed run.
    Tree mNew;
    /// What the service has, by name.
    std::map<std::string, std::string> mServed;
    std::string mCurrentArchive;

    mutable std::mutex mMutex; ///< guards what follows
    RequestKind mSpoiltKind = RequestKind::Other;
    Spoiler mSpoiler;
    std::function<void(std::size_t)> mOnRequest;
    std::size_t mRequests = 0;
    std::chrono::milliseconds mDelay{0};
};

} // namespace test
