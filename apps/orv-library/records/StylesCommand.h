#pragma once

#include <cstdint>

#include "apps/orv-library/Command.h"

/// `styles list|show`: lists the names of object styles.
class StylesCommand : public Command
{
public:
    std::string name() const override { return "styles"; }
    std::string summary() const override { return "Show the names of object styles"; }
    void declare(CommandSyntax& syntax) override;

private:
    static ExitStatus list(Session& session);
    ExitStatus show(Session& session) const;

    std::int64_t mNumber = 0;
};
