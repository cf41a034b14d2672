#pragma once

#include <string>
#include <vector>

#include "OrvHost/Settings.h"
#include "apps/orv-library/Command.h"

/// `settings`: shows and changes the settings for all programs on the root.
class SettingsCommand : public Command
{
public:
    std::string name() const override { return "settings"; }
    std::string summary() const override { return "Show and change the settings"; }
    void declare(CommandSyntax& syntax) override;

private:
    static ExitStatus list(Session& session);
    ExitStatus get(Session& session) const;
    ExitStatus set(Session& session) const;
    ExitStatus unset(Session& session) const;

    std::string mKey;
    std::vector<std::string> mValues;
};
