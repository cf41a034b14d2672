#pragma once

#include <string>

#include "OrvLibrary/IO/LibraryImport.h"
#include "apps/orv-library/Command.h"

/// `import SOURCE [--proprietary]`: a packed library becomes one of the user's.
class ImportCommand : public Command
{
public:
    std::string name() const override { return "import"; }
    std::string summary() const override { return "Import a library archive"; }
    void declare(CommandSyntax& syntax) override;

private:
    /// Where the parts of the library are now; empty for what the archive did not hold.
    struct Placed
    {
        fileString library;
        fileString textures;
    };

    ExitStatus run(Session& session) const;
    Placed place(Session& session) const;
    fileString libraryPath() const;
    fileString placeTextures(const LibraryImport::FoundFile& referenced, const fileString& library,
                             const std::shared_ptr<ProgressSubject>& progress) const;
    static fileString placeDatabase(const LibraryImport::FoundFile& database, const fileString& library);

    std::string mSource;
    bool mProprietary = false;
};
