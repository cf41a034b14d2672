#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/Settings.h"

namespace OrvHost {

/// Finds out why updates fail. It follows the steps of an update, measures each one, and gives an advice
/// after a failure. It creates no root and changes no catalog. Needs the host's services and a download
/// service set up for updates. One object belongs to one thread, which waits for the network.
class ORVHOST_EXPORT Doctor
{
public:
    /// A step of the examination and its result.
    struct Step
    {
        std::string name;
        std::optional<bool> ok; ///< empty if an earlier failure prevented this step
        std::int64_t milliseconds = 0;
        std::string text;   ///< the finding, for people; without passwords and keys
        std::string advice; ///< what to do after a failure; otherwise empty
    };

    /// The subject of an examination: the root and its settings.
    struct Subject
    {
        fileString root;             ///< with a separator at the end
        Settings::Values values;     ///< the settings that an update would use
        std::string settingsProblem; ///< why the settings could not be read; empty if they could
        std::string indexName;       ///< the name of the content index
    };

    explicit Doctor(const Subject& subject) : mSubject(subject) {}

    /// @return all steps in their order: settings, folders, space, locks, proxy, name, connection,
    /// certificate, redirect, index, header, body
    std::vector<Step> examine();

private:
    /// The finding of a step. If it has an advice, the step has failed.
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
    std::string mProxy;    ///< the proxy for the service; empty if there is none
    std::string mEndpoint; ///< the address at the end of the redirects
    std::string mCatalog;  ///< one of the names in the content index
};

} // namespace OrvHost
