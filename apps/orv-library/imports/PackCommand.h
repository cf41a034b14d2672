#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "apps/orv-library/Command.h"

/// `pack DATABASE FILE… --output OUT.orvlibz [--no-database-check]`: makes a packed library, for publishers.
class PackCommand : public Command
{
public:
    std::string name() const override { return "pack"; }
    std::string summary() const override { return "Pack a library and its files into one archive"; }
    void declare(CommandSyntax& syntax) override;

private:
    ExitStatus run(Session& session) const;
    void pack(Session& session) const;
    void requireDatabase() const;
    std::uint64_t totalBytes() const;
    std::vector<std::string> inputs() const;
    std::vector<std::string> refusals() const;

    std::string mDatabase;
    std::vector<std::string> mFiles;
    std::string mOutput;
    bool mSkipsDatabaseCheck = false;
};
