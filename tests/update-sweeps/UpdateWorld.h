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
    Page,    ///< the page for a file that the service does not have
    Body,    ///< of a core catalog
    Archive, ///< of a bonus catalog
    Other
};
const std::vector<RequestKind>& spoiltKinds();
const char* kindName(RequestKind kind);

/// A small library with something of each kind to update, a web service with the new files, and the
/// guarantees of a disturbed run: see `expectNothingLost` and `expectConverges`.
class UpdateWorld
{
public:
    using Spoiler = std::function<FaultReply(const FaultReply& sound, const FaultRequest&)>;

    UpdateWorld();
    ~UpdateWorld();

    /// Delays every sound reply by this time until the next `expectConverges`.
    void setDelay(std::chrono::milliseconds delay);

    /// Restores the library before the first run and a sound service.
    void reset();
    /// Spoils the replies to one kind of request. For headers and bodies this affects only the catalog
    /// "Doors".
    void spoil(RequestKind kind, Spoiler spoiler);
    /// Calls `hook` at the start of every request, on the thread of the connection. The argument is the
    /// request's number, from 1.
    void onRequest(std::function<void(std::size_t)> hook);

    /// Runs an update with the host object `recorder()` and a download service with short timeouts.
    void run();
    /// Runs `runner` instead of the updater, with the same download service installed.
    void run(const std::function<void()>& runner);
    /// Null after a test has destroyed it.
    std::unique_ptr<SlotRecorder>& recorder() { return mRecorder; }
    LibraryCatalogUpdate::LibraryCatalogUpdater updater();
    ScopedHost& host() { return mHost; }
    std::size_t requestCount() const;
    /// The reply of the sound service to a request of this kind.
    FaultReply soundAnswer(RequestKind kind) const;

    /// Expects that every data file has its old or its new content, that no new tag belongs to an old file,
    /// that no other files exist outside the places of an update, and that the run announced its end once.
    /// @param anyContent accepts any content of downloaded files, for a service that sent false content
    void expectNothingLost(bool anyContent = false) const;
    /// Moves complete catalogs that are left over into place, as a host does before its next run.
    void recoverLeftOvers();
    /// Expects every file to be as an undisturbed first run leaves it.
    void expectNew() const;
    /// Runs an undisturbed update with a near service, and expects the state that an undisturbed first run
    /// leaves.
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
    /// The files after an undisturbed run.
    Tree mNew;
    /// The files of the service by name.
    std::map<std::string, std::string> mServed;
    std::string mCurrentArchive;

    mutable std::mutex mMutex; ///< guards the members below
    RequestKind mSpoiltKind = RequestKind::Other;
    Spoiler mSpoiler;
    std::function<void(std::size_t)> mOnRequest;
    std::size_t mRequests = 0;
    std::chrono::milliseconds mDelay{0};
};

} // namespace test
