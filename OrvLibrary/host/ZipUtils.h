#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/fileString.h"

/// Access to zip archives. The walks and reads throw `std::runtime_error`, with the archive and what is wrong
/// with it, on anything but a sound archive: not a zip, cut, a bad directory or checksum, a broken or
/// over-long stream, an encrypted member asked to be read, overlapping members, more than 100,000 members, a
/// member of more than 1,100 times its compressed size plus 1 MiB. The valid empty archive of 22 bytes has no
/// members.
///
/// All functions may be called from any thread; one archive handle belongs to the walk that made it.
/// Extensions and names compare exactly, letter case included.
namespace ZipUtils {

/// The open archive of a walk, handed to its callback; lives as long as the walk.
class ArchiveHandle;
/// Where and how the current member of a walk is stored.
class RawDataInfo;
class ZipTargets;

/// ".zip".
ORVLIBRARY_EXPORT fileString getExtension();
/// What separates the archive's path from the member's name in a member address.
ORVLIBRARY_EXPORT fileString getDelimiter();

/// Total uncompressed size of all members, in bytes.
/// @throws std::runtime_error for an unsound archive
ORVLIBRARY_EXPORT std::uint64_t getSizeOfArchive(const fileString& archive);
/// The member names, in archive order.
/// @throws std::runtime_error for an unsound archive
ORVLIBRARY_EXPORT std::vector<fileString> getFilenamesInArchive(const fileString& archive);

using MemberCallback =
    std::function<bool(const fileString& member, ArchiveHandle& handle, const RawDataInfo& rawInfo)>;

/// Walks the members in archive order until the callback returns false. Archives that the callback wrote to
/// with `writeFileToArchiveRaw` stay open during the walk and are complete when it returns.
/// @throws std::runtime_error for an unsound archive, or when an archive written to could not be completed
/// (it is then as it was before the walk); what the callback throws passes through, and nothing written to
/// remains
ORVLIBRARY_EXPORT void getFilesDataInArchive(const fileString& archive, const MemberCallback& callback);

/// Copies the current member of a walk, still compressed, into another archive, with all that its directory
/// entry says. A member of the same name is replaced.
/// @param create true makes the target when it is missing, adds to a sound one and replaces an unsound one;
/// false needs a sound archive
/// @return false for names that are empty, absolute, hold a ".." component, a drive letter or a NUL, or are
/// over 4,096 bytes, for what cannot be copied, and for failures of the file system; a refusal touches the
/// target in no way
ORVLIBRARY_EXPORT bool writeFileToArchiveRaw(const fileString& target, const fileString& member,
                                             ArchiveHandle& handle, bool create, const RawDataInfo& rawInfo);
/// Whether members may be added: an existing sound archive that can be written, or one that this walk began.
ORVLIBRARY_EXPORT bool canAddToArchive(const fileString& archive);

/// Several walks that write to the same archives, which are completed together: while a batch lives, no walk
/// of its thread completes anything by itself, and damage in a member's data may be found as late as in
/// `complete`. A batch that is destroyed without `complete` leaves every
/// archive as it was. One object belongs to one thread.
class ORVLIBRARY_EXPORT ArchiveBatch
{
public:
    ArchiveBatch();
    ~ArchiveBatch();
    ArchiveBatch(const ArchiveBatch&) = delete;
    ArchiveBatch& operator=(const ArchiveBatch&) = delete;

    /// Begins an empty archive that takes the place of `archive` when the batch is completed; until then what
    /// stands there stays, and can be walked. Other writers are kept off it, and waited for at most a minute.
    /// @throws std::runtime_error when it cannot be written
    void begin(const fileString& archive);
    /// Gives every archive that was written to its place.
    /// @throws std::runtime_error when one could not be completed, or a walk had failed
    void complete();

private:
    friend ZipTargets* currentBatch();
    class Private;
    std::unique_ptr<Private> mPrivate;
};

using DataCallback = std::function<void(const std::vector<unsigned char>& data)>;

/// Delivers a member's whole data in one piece. Of several members of one name the last one counts.
/// @param memberAddress archive path + `getDelimiter()` + member name
/// @throws std::bad_alloc when the data cannot be allocated or is over 512 MiB; `std::runtime_error` for an
/// unsound archive or a missing member
ORVLIBRARY_EXPORT void writeFileDataFromArchive(const fileString& memberAddress,
                                                const DataCallback& callback);

/// Reads one member in pieces. Like the walks it throws `std::runtime_error` where the archive is not sound;
/// the member's checksum is verified when its end is reached. One object belongs to one thread.
class ORVLIBRARY_EXPORT ZipInputStream
{
public:
    /// @throws std::runtime_error when the archive or the member cannot be opened
    explicit ZipInputStream(const fileString& memberAddress);
    ~ZipInputStream();
    ZipInputStream(const ZipInputStream&) = delete;
    ZipInputStream& operator=(const ZipInputStream&) = delete;

    bool isFileOpen() const;
    /// The next piece, at most `maxBytes` bytes; empty at the end.
    std::vector<unsigned char> readArchivedFile(std::size_t maxBytes);
    bool reachedEOF() const;

private:
    class Private;
    std::unique_ptr<Private> mPrivate;
};

} // namespace ZipUtils
