#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "apps/orv-library/Command.h"

/// `filters list|show|add|remove|use|drop-database|merge`: shows and changes the named filters. Each change
/// prints the list as a new program would read it.
class FiltersCommand : public Command
{
public:
    std::string name() const override { return "filters"; }
    std::string summary() const override { return "List and change the named filters"; }
    void declare(CommandSyntax& syntax) override;

private:
    static constexpr std::int64_t kNoId = std::numeric_limits<std::int64_t>::min();

    ExitStatus list(Session& session) const;
    ExitStatus show(Session& session) const;
    ExitStatus add(Session& session) const;
    ExitStatus remove(Session& session) const;
    ExitStatus use(Session& session) const;
    ExitStatus dropDatabase(Session& session) const;
    ExitStatus merge(Session& session) const;

    std::int64_t mId = kNoId;
    std::string mName;
    std::vector<std::string> mDatabases;
    std::string mIdOrName;
    std::string mDatabase;
    std::string mFile;
};
