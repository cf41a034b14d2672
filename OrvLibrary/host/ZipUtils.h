#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/ProgressSubject.h"
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

/// Thrown by work that its progress object asked to cancel. Nothing that it wrote remains.
class ORVLIBRARY_EXPORT Cancelled : public std::runtime_error
{
public:
    Cancelled();
    ~Cancelled() override;
};

/// ".zip".
ORVLIBRARY_EXPORT fileString getExtension();
/// Thrown within the library when another program has replaced the archive that is about to be replaced:
/// what was written was made of the former one, and is given up. For other code it is a std::runtime_error.
class Overtaken : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The text between the archive's path and the member's name in a member address.
ORVLIBRARY_EXPORT fileString getDelimiter();

/// Total uncompressed size of all members, in bytes.
/// @throws std::runtime_error for an unsound archive
ORVLIBRARY_EXPORT std::uint64_t getSizeOfArchive(const fileString& archive);
/// The member names, in archive order.
/// @throws std::runtime_error for an unsound archive
ORVLIBRARY_EXPORT std::vector<fileString> getFilenamesInArchive(const fileString& archive);

using MemberCallback =
    std::function<bool(const fileString& member, ArchiveHandle& handle, const RawDataInfo& rawInfo)>;

/// Walks the members in archive order until the callback returns false. Members that the callback writes with
/// `writeFileToArchiveRaw` go to files beside the archives, which take their places when the walk ends. A
/// walk inside the callback of another one is on its own.
/// @throws std::runtime_error for an unsound archive, or when an archive written to could not be completed
/// (it is then as it was before the walk); what the callback throws passes through, and nothing written to
/// remains
ORVLIBRARY_EXPORT void getFilesDataInArchive(const fileString& archive, const MemberCallback& callback);

/// Copies the current member of a walk, still compressed, into another archive, with all that its directory
/// entry says. A member of the same name is replaced.
/// @param create true makes the target when it is missing, adds to a sound one and replaces an unsound one;
/// false needs a sound archive
/// @return false for names that are empty, absolute, hold a ".." component, a drive letter or a NUL, or are
/// over 4,096 bytes, for what cannot be copied, and for a target that cannot be begun; a refusal touches the
/// target in no way. Another writer of the target is waited for; all waiting of a walk takes at most 5 s. A
/// target that could not be begun is refused at once for the rest of the walk.
/// @throws std::runtime_error when the new archive cannot be written, for example on a full disk
ORVLIBRARY_EXPORT bool writeFileToArchiveRaw(const fileString& target, const fileString& member,
                                             ArchiveHandle& handle, bool create, const RawDataInfo& rawInfo);
/// Whether members may be added: an existing sound archive that can be written, or one that the innermost
/// walk of this thread began.
ORVLIBRARY_EXPORT bool canAddToArchive(const fileString& archive);
/// The same for the walk of that handle; false at once for an archive that it could not begin.
ORVLIBRARY_EXPORT bool canAddToArchive(const fileString& archive, const ArchiveHandle& handle);
/// Whether a target of that walk could not be begun, so that nothing was or will be written to it.
ORVLIBRARY_EXPORT bool isRefused(const fileString& target, const ArchiveHandle& handle);

/// Makes a file of the current member's content, written beside `target`, whose place it takes when the walk
/// ends. A large member may be extracted on a thread of its own while the walk goes on; damage in it is then
/// found by the end of the walk. Of several members for one target the last one counts.
/// @return false for a target that exists and is read-only or locked by another writer, which is left alone
/// @throws std::ios_base::failure when the target cannot be written; std::runtime_error for an unsound member
ORVLIBRARY_EXPORT bool extractFileFromArchive(const fileString& target, ArchiveHandle& handle,
                                              const RawDataInfo& rawInfo);
/// Tells the walk that the current member is not wanted: its content is not verified.
ORVLIBRARY_EXPORT void leaveOutMember(ArchiveHandle& handle, const RawDataInfo& rawInfo);

/// Several walks that write to the same archives, which are completed together. A walk belongs to a batch
/// when it is made by it, and to nothing else. A batch that is destroyed without `complete` leaves every
/// archive as it was. One object belongs to one thread.
///
/// A walk gives the progress object a sub-progress of as many bytes as `getSizeOfArchive` says, and tells it
/// of the content that is done (`advanceBytes`), over a whole walk just as many. The object is asked for a
/// cancel after every 8 MB of work; less than that is neither told in between nor asked about. Labels name
/// what comes after the last member, where that is 8 MB or more: "checking", "putting in place".
class ORVLIBRARY_EXPORT ArchiveBatch
{
public:
    /// @param progress may be null
    explicit ArchiveBatch(std::shared_ptr<ProgressSubject> progress);
    ~ArchiveBatch();
    ArchiveBatch(const ArchiveBatch&) = delete;
    ArchiveBatch& operator=(const ArchiveBatch&) = delete;

    /// Begins an empty archive that takes the place of `archive` when the batch is completed; until then what
    /// stands there stays, and can be walked. Other writers are kept off it.
    /// @throws std::runtime_error when it cannot be written, or another writer holds it for more than 5 s;
    /// Cancelled
    void begin(const fileString& archive);
    /// Walks an archive as `getFilesDataInArchive` does, but completes nothing.
    /// @throws as `getFilesDataInArchive`; Cancelled
    void walk(const fileString& archive, const MemberCallback& callback);
    /// Gives everything that was written to its place.
    /// @throws std::runtime_error when something could not be completed, or a walk had failed; Cancelled
    void complete();

private:
    class Private;
    std::unique_ptr<Private> mPrivate;
};

/// Moves a file as it is to a name that nothing has, also to another file system. A source that cannot be
/// removed stays.
/// @param progress is asked for a cancel; may be null
/// @return false when something has the name; `source` is then still there
/// @throws std::runtime_error when `source` is no regular file, or `target` cannot be written; Cancelled
ORVLIBRARY_EXPORT bool moveToNewArchive(const fileString& source, const fileString& target,
                                        const std::shared_ptr<ProgressSubject>& progress);

/// A member that is not sound, and why. The name is empty where the archive as a whole cannot be read.
struct DamagedMember
{
    fileString name;
    std::string reason; ///< names archive and member
};

/// Verifies the structure of an archive and every member of it that is neither encrypted nor compressed by
/// another method than deflate.
/// @param progress is told the total in bytes and the bytes that are done, and asked for a cancel; may be
/// null
/// @param damaged takes what is not sound, in no certain order; may be null
/// @return whether the archive is sound
/// @throws Cancelled
ORVLIBRARY_EXPORT bool verify(const fileString& archive, const std::shared_ptr<ProgressSubject>& progress,
                              std::vector<DamagedMember>* damaged);
/// Writes the sound members of a damaged archive, which stays as it is, to a new archive. Where the directory
/// is lost, the members are looked for in the whole file; only their content, names and dates come back then.
/// @param target is replaced in one step; may be the archive itself
/// @param progress as for `verify`
/// @param lost takes the members that are not sound; may be null
/// @throws std::runtime_error when `archive` cannot be read at all or `target` cannot be written; Cancelled
ORVLIBRARY_EXPORT void salvage(const fileString& archive, const fileString& target,
                               const std::shared_ptr<ProgressSubject>& progress,
                               std::vector<DamagedMember>* lost);

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
