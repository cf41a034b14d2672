#pragma once

#include <cstdint>
#include <string>

#include "apps/orv-library/Command.h"

/// `serve`: runs the embedded catalog service for a content folder.
class ServeCommand : public Command
{
public:
    std::string name() const override { return "serve"; }
    std::string summary() const override { return "Serve a content folder as a catalog web service"; }
    void declare(CommandSyntax& syntax) override;

private:
    ExitStatus run(Session& session) const;

    std::string mFolder;
    std::string mAddress = "127.0.0.1";
    std::int64_t mPort = 0;
};
