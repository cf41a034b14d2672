#pragma once

#include <string>
#include <vector>

#include "OrvHost/imports/ArchiveImport.h"
#include "apps/orv-library/Command.h"

/// `import SOURCE… [--proprietary] [--dry-run] [--set-aside] [--no-database-check]`: imports packed
/// libraries.
class ImportCommand : public Command
{
public:
    std::string name() const override { return "import"; }
    std::string summary() const override { return "Import library archives"; }
    void declare(CommandSyntax& syntax) override;

private:
    using Result = OrvHost::ArchiveImport::Result;

    ExitStatus run(Session& session) const;
    std::vector<Result> importAll(Session& session) const;
    Result importOne(Session& session, const std::string& source) const;
    void complain(const std::vector<Result>& results) const;
    ExitStatus status(const std::vector<Result>& results) const;

    std::vector<std::string> mSources;
    bool mIsProprietary = false;
    bool mIsDryRun = false;
    bool mSetsAside = false;
    bool mSkipsDatabaseCheck = false;
};
