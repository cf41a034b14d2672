#pragma once

#include <string>

#include "OrvLibrary/IO/LibraryImport.h"
#include "apps/orv-library/Command.h"

/// `unpack SOURCE [--beside|--output-dir DIR]`: extracts the database and the referenced files of a packed
/// library.
class UnpackCommand : public Command
{
public:
    std::string name() const override { return "unpack"; }
    std::string summary() const override { return "Unpack a library archive"; }
    void declare(CommandSyntax& syntax) override;

private:
    void checkUsage() const;
    void requireOtherFile(const fileString& target) const;
    ExitStatus run(Session& session) const;
    std::string leftBeside(const LibraryImport::UnpackResult& result) const;
    LibraryImport::UnpackResult unpackUninterrupted(Session& session) const;
    LibraryImport::UnpackResult unpackInto(Session& session,
                                           const std::shared_ptr<ProgressSubject>& progress) const;

    std::string mSource;
    bool mBeside = false;
    std::string mOutputFolder = ".";
};
