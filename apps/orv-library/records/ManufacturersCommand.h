#pragma once

#include <cstdint>
#include <string>

#include "apps/orv-library/Command.h"

/// `manufacturers list|show|refresh`: shows and refreshes the manufacturer records.
class ManufacturersCommand : public Command
{
public:
    std::string name() const override { return "manufacturers"; }
    std::string summary() const override { return "Show and refresh the manufacturer records"; }
    void declare(CommandSyntax& syntax) override;

private:
    static ExitStatus list(Session& session);
    ExitStatus show(Session& session) const;
    ExitStatus refresh(Session& session) const;

    std::int64_t mId = 0;
    std::string mDataUrl;
    std::string mLogoUrl;
};
