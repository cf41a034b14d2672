#include "OrvLibrary/IO/LibraryImport.h"

#include <filesystem>
#include <stdexcept>

#include <boost/format.hpp>

#include "OrvLibrary/IO/LibraryImport_p.h"
#include "OrvLibrary/host/Curl.h"
#include "OrvLibrary/host/FileReaper.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/NullPointerRaiser.h"
#include "OrvLibrary/host/StringTable.h"
#include "OrvLibrary/host/StringUtils.h"
#include "OrvLibrary/host/ZipUtils.h"

namespace LibraryImport {

namespace {

constexpr const char* kDatabaseExtension = ".orvlib";

fileString outputName(const fileString& archive, bool temporary, const fileString& extension)
{
    if (!temporary)
        return archive.pathAndName() + extension;
    fileString name;
    name.generateAsTempName(extension);
    return name;
}

bool isSameFile(const fileString& a, const fileString& b)
{
    std::error_code error;
    return std::filesystem::equivalent(a.toNativeString(), b.toNativeString(), error);
}

/// A file that `unpack` makes or replaces.
class Output
{
public:
    Output(const fileString& path, bool isTemporary) : mPath(path), mGuard(path)
    {
        if (!isTemporary && path.pathExists() && FileUtils::isPathWriteLocked(path))
            leaveAlone();
    }

    const fileString& path() const { return mPath; }
    FoundFile found() const { return mIsFound ? FoundFile(true, mPath) : FoundFile(); }
    void setFound() { mIsFound = true; }
    /// The file existed and could not be begun, so it stays.
    void leaveAlone() { mGuard.cancel(); }
    /// Called when the run was successful.
    void keep()
    {
        if (mIsFound)
            mGuard.cancel();
    }

private:
    fileString mPath;
    /// Deliberate: set before anything is written. So if the archive has no member of this kind, a file that
    /// was beside it is removed, too.
    /// Kept by: LibraryImportUnpackTest.filesBesideGoWhenTheArchiveHoldsNoneOfTheirKind
    FileReaper mGuard;
    bool mIsFound = false;
};

/// One run of `unpack`: the callback for the members and its data.
class Unpacking
{
public:
    Unpacking(const fileString& archive, const fileString& database, const fileString& referenced,
              bool isTemporary, std::shared_ptr<ProgressSubject> progress)
        : mArchive(archive),
          mProgress(std::move(progress)),
          mDatabase(database, isTemporary),
          mReferenced(referenced, isTemporary)
    {
    }

    UnpackResult run()
    {
        try {
            ZipUtils::ArchiveBatch batch(mProgress);
            batch.walk(mArchive, [this](const fileString& member, ZipUtils::ArchiveHandle& handle,
                                        const ZipUtils::RawDataInfo& raw) {
                return handleMember(member, handle, raw);
            });
            batch.complete();
        } catch (const ZipUtils::Cancelled&) {
            return {};
        } catch (const std::exception&) {
            // If damage and a cancel come together, the cancel counts.
            if (mProgress && mProgress->checkCancel(false))
                return {};
            throw;
        }
        mDatabase.keep();
        mReferenced.keep();
        return {mDatabase.found(), mReferenced.found()};
    }

private:
    bool handleMember(const fileString& member, ZipUtils::ArchiveHandle& handle,
                      const ZipUtils::RawDataInfo& raw)
    {
        if (mProgress && mProgress->checkCancel(false))
            throw ZipUtils::Cancelled();
        updateProgressDialog(mProgress, member.unicodeString());
        // Deliberate: each database replaces the one before, so the last one counts.
        // Kept by: LibraryImportUnpackTest.lastOfThreeDatabasesWins
        const bool isDatabase = member.extension() == fileString(kDatabaseExtension);
        Output& output = isDatabase ? mDatabase : mReferenced;
        if (isDatabase ? ZipUtils::extractFileFromArchive(mDatabase.path(), handle, raw)
                       : copyMember(member, handle, raw))
            output.setFound();
        else if (ZipUtils::isRefused(output.path(), handle))
            output.leaveAlone();
        // Deliberate: a member that cannot be copied is skipped.
        // Kept by: LibraryImportUnpackTest.unsafeNamesAreSkippedAndNothingLeavesTheTarget
        return true;
    }

    bool copyMember(const fileString& member, ZipUtils::ArchiveHandle& handle,
                    const ZipUtils::RawDataInfo& raw)
    {
        return (ZipUtils::canAddToArchive(mReferenced.path(), handle) &&
                ZipUtils::writeFileToArchiveRaw(mReferenced.path(), member, handle, false, raw)) ||
               ZipUtils::writeFileToArchiveRaw(mReferenced.path(), member, handle, true, raw);
    }

    fileString mArchive;
    std::shared_ptr<ProgressSubject> mProgress; ///< may be null
    Output mDatabase;
    Output mReferenced;
};

/// The translated text with the member's name. If the translation is broken, the translation alone.
marl::unicode::String unpackingLabel(const marl::unicode::String& member)
{
    const std::string text = StringUtils::loadString(TextId::kUnpacking);
    try {
        return str(boost::format(text) % member.toUTF8String());
    } catch (const boost::io::format_error&) {
        return text;
    }
}

} // namespace

UnpackResult unpack(const fileString& archive, bool useTemporaryNames,
                    std::shared_ptr<ProgressSubject> progress)
{
    if (!archive.pathExists())
        return {};
    const fileString database = outputName(archive, useTemporaryNames, fileString(kDatabaseExtension));
    const fileString referenced = outputName(archive, useTemporaryNames, ZipUtils::getExtension());
    if (isSameFile(archive, database) || isSameFile(archive, referenced))
        throw std::runtime_error(archive.toNativeString() + ": cannot be unpacked over itself");
    return Unpacking(archive, database, referenced, useTemporaryNames, std::move(progress)).run();
}

UnpackResult unpackArchivedLibrary(const fileString& archive, std::shared_ptr<ProgressSubject> progress)
{
    const std::string url = StringUtils::toWin1252(archive.unicodeString());
    if (!Curl::get().downloadable(url))
        return unpack(archive, true, std::move(progress));
    const fileString downloaded = Curl::get().download(url);
    if (downloaded.empty())
        return {};
    const FileReaper guard(downloaded);
    return unpack(downloaded, true, std::move(progress));
}

FoundFile createTempDatabase(const fileString& library, std::shared_ptr<ProgressSubject> progress)
{
    if (!library.pathExists())
        return {};
    fileString copy;
    copy.generateAsTempName(kDatabaseExtension);
    if (!progress)
        NullPointerRaiser::Throw("progress", __FILE__, __LINE__);
    progress->updateLabels(library.unicodeString(), {});
    if (!FileUtils::copyFile(library, copy, true))
        return {};
    FileUtils::makeFileWritable(copy);
    return {true, copy};
}

void updateProgressDialog(const std::shared_ptr<ProgressSubject>& progress,
                          const marl::unicode::String& member)
{
    if (progress)
        progress->increment(unpackingLabel(member), {});
}

} // namespace LibraryImport
