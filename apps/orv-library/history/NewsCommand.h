#pragma once

#include <cstdint>

#include "apps/orv-library/Command.h"

/// `news`: shows the changes that updates made in the catalogs.
class NewsCommand : public Command
{
public:
    std::string name() const override { return "news"; }
    std::string summary() const override { return "Show which items are new, changed and removed"; }
    void declare(CommandSyntax& syntax) override;

private:
    ExitStatus run(Session& session) const;

    std::int64_t mSince = 0; ///< 0 if not given
};
