#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/Settings.h"

namespace OrvHost {

/// Looks for what keeps updates from working: goes the way of an update step by step, tells how long each
/// took and, when it fails, what to do. It creates no root and touches no catalog. Needs the host's services,
/// and the download service as it is set up for updates. One object belongs to one thread, which waits for
/// the network.
class ORVHOST_EXPORT Doctor
{
public:
    /// A step of the examination, and what came of it.
    struct Step
    {
        std::string name;
        std::optional<bool> ok; ///< none when it could not be tried after a failure
        std::int64_t milliseconds = 0;
        std::string text;   ///< what was found, for people; without secrets
        std::string advice; ///< what to do; empty when nothing failed
    };

    /// The root and the settings that are examined.
    struct Subject
    {
        fileString root;             ///< with its final separator
        Settings::Values values;     ///< what an update would work with
        std::string settingsProblem; ///< why the settings could not be read; empty when they could
        std::string indexName;       ///< of the content index
    };

    explicit Doctor(const Subject& subject) : mSubject(subject) {}

    /// @return the steps in their order: settings, folders, space, locks, proxy, name, connection,
    /// certificate, redirect, index, header, body
    std::vector<Step> examine();

private:
    /// The result of a step; one with an advice is a failure.
    struct Finding
    {
        std::string text;
        std::string advice;
    };

    void take(const char* name, bool canBeTried, const std::function<Finding()>& look);
    bool isGood(const char* name) const;
    std::string requestFor(const std::string& name) const;

    Finding settings() const;
    Finding folders() const;
    Finding space() const;
    static Finding locks();
    Finding proxy();
    Finding name() const;
    Finding connection() const;
    Finding certificate() const;
    Finding redirect();
    Finding index();
    Finding header();
    Finding body() const;

    Subject mSubject;
    std::vector<Step> mSteps;
    std::string mProxy;    ///< the proxy on the way to the service; empty for none
    std::string mEndpoint; ///< where the redirect leads to
    std::string mCatalog;  ///< a name that the content index lists
};

} // namespace OrvHost
