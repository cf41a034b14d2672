// How it works: an import has two parts. The first one unpacks to the temporary folder and checks the result.
// It needs no lock, and `plan` ends here. The second one holds the lock of the former imports and replaces
// files: the texture archive, then the ".bak" file, then the database.
#include "OrvHost/imports/ArchiveImport.h"

#include <atomic>
#include <filesystem>
#include <future>
#include <set>
#include <stdexcept>

#include "OrvHost/health/DatabaseCheck.h"
#include "OrvHost/imports/FormerImports_p.h"
#include "OrvHost/imports/ImportSteps_p.h"
#include "OrvHost/imports/LibrarySource.h"
#include "OrvHost/imports/TextureArchive.h"
#include "OrvLibrary/host/FileReaper.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/ZipUtils.h"

namespace OrvHost {

namespace {

using Options = ArchiveImport::Options;
using Result = ArchiveImport::Result;

std::set<fileString> memberNames(const fileString& archive)
{
    const std::vector<fileString> names = ZipUtils::getFilenamesInArchive(archive);
    return {names.begin(), names.end()};
}

/// The import of one source.
class Importing
{
public:
    Importing(const fileString& root, const Options& options, Result& result,
              const std::shared_ptr<ProgressSubject>& progress)
        : mRoot(root),
          mOptions(options),
          mResult(result),
          mSource(result.source),
          mSteps(std::make_shared<ImportSteps>(progress))
    {
    }

    void plan()
    {
        unpack();
        foresee();
        if (mHasTextures && mTextures.pathExists())
            foreseeMerge();
        mSteps->throwIfCancelled();
    }

    void run()
    {
        unpack();
        mSteps->begin("putting in place");
        FormerImports former(mRoot, mSteps);
        foresee();
        former.begin(mSource.stem().toNativeString(), mOptions.isProprietary, roles());
        try {
            placeTextures(former);
            if (mHasDatabase) // otherwise the last file is in place, and a cancel comes too late
                mSteps->throwIfCancelled();
            placeDatabase(former);
        } catch (...) {
            former.rollBack();
            throw;
        }
        complete(former);
    }

private:
    /// Unpacks the source to the temporary folder and checks the files.
    void unpack()
    {
        const fileString stem = mSource.stem();
        mLibrary = ImportFiles::library(stem, mOptions.isProprietary);
        mTextures = ImportFiles::textures(stem, mOptions.isProprietary);
        if (mSource.isAddress()) {
            mSteps->begin("downloading");
            mSource.fetch(mSteps);
        }
        mSteps->begin("reading");
        mFiles = mSource.unpack(mSteps);
        mSteps->begin("checking");
        mHasDatabase = mFiles->found.first.first;
        mHasTextures = mFiles->found.second.first;
        if (!mHasDatabase && !mHasTextures)
            throw std::runtime_error(mResult.source + ": holds neither a library nor referenced files");
        mNames = mHasTextures ? memberNames(newTextures()) : std::set<fileString>();
        if (mHasDatabase && mOptions.checksDatabase)
            requireDatabase();
    }

    void requireDatabase() const
    {
        std::atomic<bool> isCancelled = false;
        std::future<std::string> check = std::async(std::launch::async, [&] {
            return DatabaseCheck::problemOf(newDatabase(), DatabaseCheck::kLimit,
                                            [&isCancelled] { return isCancelled.load(); });
        });
        // Only this thread may call the progress object.
        while (check.wait_for(std::chrono::milliseconds(20)) != std::future_status::ready)
            isCancelled = mSteps->checkCancel(false);
        const std::string problem = check.get();
        if (!problem.empty())
            throw std::runtime_error(mResult.source + ": the library in it " + problem);
    }

    const fileString& newTextures() const { return mFiles->found.second.second; }
    const fileString& newDatabase() const { return mFiles->found.first.second; }

    /// Sets the parts of the result that tell what the import will do.
    void foresee()
    {
        if (mHasDatabase)
            mResult.library = mLibrary;
        if (mHasTextures)
            mResult.textures = mTextures;
        mResult.replaces = mHasDatabase && mLibrary.pathExists();
        mResult.added = mNames.size();
        mResult.replaced = 0;
        try {
            if (mHasTextures && mTextures.pathExists())
                countReplaced();
        } catch (const std::exception&) {
            // The existing archive cannot be read; the merge will report why.
        }
    }

    void countReplaced()
    {
        for (const fileString& name : memberNames(mTextures))
            mResult.replaced += mNames.count(name);
        mResult.added -= mResult.replaced;
    }

    /// The merge reads the members of the existing archive that stay.
    void foreseeMerge()
    {
        const std::string damage = TextureArchive::damageOf(mTextures, mNames, mSteps);
        if (damage.empty())
            return;
        if (!mOptions.setsAside)
            failFor(damage);
        mResult.setAside = TextureArchive::setAsideName(mTextures);
    }

    [[noreturn]] void failFor(const std::string& damage)
    {
        mResult.damaged = mTextures;
        throw std::runtime_error(damage);
    }

    /// The files that this import will change.
    std::vector<std::string> roles() const
    {
        std::vector<std::string> roles;
        if (mHasTextures)
            roles.emplace_back("textures");
        if (mResult.replaces)
            roles.emplace_back("library.bak");
        if (mHasDatabase)
            roles.emplace_back("library");
        return roles;
    }

    void placeTextures(FormerImports& former)
    {
        if (!mHasTextures)
            return;
        // The library's merge removes its source even after a failure.
        const bool isMerge = mTextures.pathExists();
        std::string reason;
        if (merge(isMerge ? copyOf(newTextures()) : newTextures(), reason))
            return;
        mSteps->throwIfCancelled();
        const std::string damage =
            isMerge ? TextureArchive::damageOf(mTextures, mNames, mSteps) : std::string();
        if (damage.empty())
            throw std::runtime_error(reason);
        if (!mOptions.setsAside)
            failFor(damage);
        setAside(former);
    }

    bool merge(const fileString& textures, std::string& reason) const
    {
        return LibraryImport::moveArchivedTextures(textures, mTextures, mSteps, reason);
    }

    static fileString copyOf(const fileString& file)
    {
        fileString copy;
        copy.generateAsTempName(file.extension());
        std::error_code error;
        std::filesystem::create_hard_link(file.toNativeString(), copy.toNativeString(), error);
        if (error && !FileUtils::copyFile(file, copy, true))
            throw std::runtime_error(copy.toNativeString() + ": cannot be written");
        return copy;
    }

    void setAside(FormerImports& former)
    {
        const fileString name = TextureArchive::setAsideName(mTextures);
        former.addNewFile("textures" + name.toNativeString().substr(mTextures.toNativeString().size()));
        TextureArchive::setAside(mTextures, name, mSteps);
        mResult.setAside = name;
        foresee();
        std::string reason;
        if (!merge(newTextures(), reason))
            throw std::runtime_error(reason);
    }

    /// Renames the former library to its ".bak" name before the new one gets the name, so that the name
    /// always belongs to a complete library.
    void placeDatabase(const FormerImports& former) const
    {
        if (mResult.replaces)
            moveOver(former.copyKept("library"), mLibrary + fileString(".bak"));
        if (!mHasDatabase)
            return;
        FileUtils::setFilePermission(newDatabase());
        mSteps->throwIfCancelled();
        moveOver(newDatabase(), mLibrary);
    }

    /// The library is in place. If the record cannot be updated, the next import or undo recognises this.
    static void complete(FormerImports& former)
    {
        try {
            former.commit();
        } catch (const std::exception&) {
            // Nothing to report: the import is complete.
        }
    }

    fileString mRoot;
    Options mOptions;
    Result& mResult;
    LibrarySource mSource;
    std::shared_ptr<ImportSteps> mSteps;
    fileString mLibrary;
    fileString mTextures;
    std::unique_ptr<UnpackedFiles> mFiles;
    std::set<fileString> mNames; ///< names of the new referenced files
    bool mHasDatabase = false;
    bool mHasTextures = false;
};

using Work = void (Importing::*)();

/// All exceptions of an import end here.
Result perform(Work work, const fileString& root, const Options& options, const std::string& source,
               const std::shared_ptr<ProgressSubject>& progress)
{
    Result result;
    result.source = source;
    try {
        (Importing(root, options, result, progress).*work)();
        return result;
    } catch (const std::exception& error) {
        result.error = error.what();
    }
    Result failed;
    failed.source = source;
    failed.damaged = result.damaged;
    failed.isCancelled = progress->checkCancel(false);
    failed.error = failed.isCancelled ? "cancelled" : result.error;
    return failed;
}

} // namespace

ArchiveImport::ArchiveImport(const fileString& root, const Options& options) : mRoot(root), mOptions(options)
{
}

Result ArchiveImport::plan(const std::string& source, const std::shared_ptr<ProgressSubject>& progress) const
{
    return perform(&Importing::plan, mRoot, mOptions, source, progress);
}

Result ArchiveImport::run(const std::string& source, const std::shared_ptr<ProgressSubject>& progress) const
{
    return perform(&Importing::run, mRoot, mOptions, source, progress);
}

} // namespace OrvHost
