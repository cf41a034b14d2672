#include "OrvLibrary/IO/LibraryImport.h"

#include <new>

#include <boost/format.hpp>

#include "OrvLibrary/IO/LibraryImport_p.h"
#include "OrvLibrary/host/Curl.h"
#include "OrvLibrary/host/FileReaper.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/LockingFStream.h"
#include "OrvLibrary/host/NullPointerRaiser.h"
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

/// A stream for the database that throws when something goes wrong; without `close` the target stays as it
/// is.
class DatabaseStream
{
public:
    explicit DatabaseStream(const fileString& target)
        : mStream(target, std::ios_base::out | std::ios_base::binary | std::ios_base::trunc)
    {
        mStream.exceptions(std::ios_base::failbit | std::ios_base::badbit);
    }

    void append(const std::vector<unsigned char>& data)
    {
        mStream.write(reinterpret_cast<const char*>(data.data()), static_cast<std::streamsize>(data.size()));
    }
    void close() { mStream.close(); }

private:
    LockingFStream mStream;
};

void extractWhole(const fileString& memberAddress, const fileString& target)
{
    DatabaseStream stream(target);
    ZipUtils::writeFileDataFromArchive(memberAddress,
                                       [&](const std::vector<unsigned char>& data) { stream.append(data); });
    stream.close();
}

void extractInPieces(const fileString& memberAddress, const fileString& target)
{
    constexpr std::size_t kPiece = 52428800;
    DatabaseStream stream(target);
    ZipUtils::ZipInputStream member(memberAddress);
    while (member.isFileOpen() && !member.reachedEOF())
        stream.append(member.readArchivedFile(kPiece));
    stream.close();
}

/// One run of `unpack`: the member handler and what it keeps between its calls.
class Unpacking
{
public:
    Unpacking(const fileString& archive, bool useTemporaryNames, std::shared_ptr<ProgressSubject> progress)
        : mArchive(archive),
          mProgress(std::move(progress)),
          mDatabase(outputName(archive, useTemporaryNames, fileString(kDatabaseExtension))),
          mReferenced(outputName(archive, useTemporaryNames, ZipUtils::getExtension())),
          mDatabaseGuard(mDatabase),
          mReferencedGuard(mReferenced)
    {
    }

    UnpackResult run()
    {
        if (mProgress)
            mProgress->createSubProgress(ZipUtils::getSizeOfArchive(mArchive));
        ZipUtils::getFilesDataInArchive(
            mArchive, [this](const fileString& member, ZipUtils::ArchiveHandle& handle,
                             const ZipUtils::RawDataInfo& raw) { return handleMember(member, handle, raw); });
        if (mCancelled)
            return {};
        if (mResult.first.first)
            mDatabaseGuard.cancel();
        if (mResult.second.first)
            mReferencedGuard.cancel();
        return mResult;
    }

private:
    bool handleMember(const fileString& member, ZipUtils::ArchiveHandle& handle,
                      const ZipUtils::RawDataInfo& raw)
    {
        if (mProgress && mProgress->checkCancel(false)) {
            mCancelled = true;
            return false;
        }
        updateProgressDialog(mProgress, member.unicodeString());
        if (member.extension() == fileString(kDatabaseExtension)) {
            extractDatabase(member);
            mResult.first = {true, mDatabase};
        } else if (copyMember(member, handle, raw)) {
            mResult.second = {true, mReferenced};
        }
        // Deliberate: a member that could not be copied is skipped, and the walk goes on.
        return true;
    }

    /// Deliberate: of several databases each replaces the one before, so that the last one wins.
    void extractDatabase(const fileString& member)
    {
        const fileString address = mArchive + ZipUtils::getDelimiter() + member;
        try {
            extractWhole(address, mDatabase);
        } catch (const std::bad_alloc&) {
            extractInPieces(address, mDatabase);
        }
    }

    bool copyMember(const fileString& member, ZipUtils::ArchiveHandle& handle,
                    const ZipUtils::RawDataInfo& raw)
    {
        return (ZipUtils::canAddToArchive(mReferenced) &&
                ZipUtils::writeFileToArchiveRaw(mReferenced, member, handle, false, raw)) ||
               ZipUtils::writeFileToArchiveRaw(mReferenced, member, handle, true, raw);
    }

    fileString mArchive;
    std::shared_ptr<ProgressSubject> mProgress; ///< may be null
    fileString mDatabase;
    fileString mReferenced;
    /// Deliberate: set before anything is written, so that a file that stood beside the archive goes, too,
    /// when the archive holds no member of its kind.
    FileReaper mDatabaseGuard;
    FileReaper mReferencedGuard;
    UnpackResult mResult{};
    bool mCancelled = false;
};

/// The translated text around a member's name; the text alone when the translation is no format.
marl::unicode::String unpackingLabel(const marl::unicode::String& member)
{
    constexpr std::uint32_t kUnpackingMember = 2893;
    const std::string text = StringUtils::loadString(kUnpackingMember);
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
    return Unpacking(archive, useTemporaryNames, std::move(progress)).run();
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
