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

/// Access to zip archives. Reading functions throw `std::runtime_error`, with the archive and the problem, if
/// the archive is not sound. Problems are: not a zip archive, cut off, a wrong directory or checksum, a
/// broken stream or one that is too long, reading an encrypted member, members that overlap, more than
/// 100,000 members, or a member larger than 1,100 times its compressed size plus 1 MiB. An empty archive of
/// 22 bytes is sound.
///
/// All functions may be called from any thread. An archive handle belongs to the walk that made it.
/// Extensions and names are compared exactly, including letter case.
namespace ZipUtils {

/// The open archive of a walk. It is passed to the callback and lives as long as the walk.
class ArchiveHandle;
/// How the current member of a walk is stored.
class RawDataInfo;

/// Thrown if the progress object cancels the work. Nothing written by the work remains.
class ORVLIBRARY_EXPORT Cancelled : public std::runtime_error
{
public:
    Cancelled();
    ~Cancelled() override;
};

/// ".zip".
ORVLIBRARY_EXPORT fileString getExtension();
/// Thrown inside the library if another program has replaced the archive that is about to be replaced. The
/// new file was made from the former archive, so it is dropped. Other code sees a std::runtime_error.
class Overtaken : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The text between the archive's path and the member's name in the address of a member.
ORVLIBRARY_EXPORT fileString getDelimiter();

/// The sum of the uncompressed sizes of all members, in bytes.
/// @throws std::runtime_error if the archive is damaged
ORVLIBRARY_EXPORT std::uint64_t getSizeOfArchive(const fileString& archive);
/// The names of the members, in the order of the archive.
/// @throws std::runtime_error if the archive is damaged
ORVLIBRARY_EXPORT std::vector<fileString> getFilenamesInArchive(const fileString& archive);

using MemberCallback =
    std::function<bool(const fileString& member, ArchiveHandle& handle, const RawDataInfo& rawInfo)>;

/// Calls the callback for each member, in the order of the archive, until it returns false. Members that the
/// callback writes with `writeFileToArchiveRaw` go to files beside the archives; these replace the archives
/// when the walk ends. A walk inside the callback of another walk is independent of it.
/// @throws std::runtime_error if the archive is damaged, or if an archive could not be written (it is then
/// unchanged); whatever the callback throws, and then nothing written remains
ORVLIBRARY_EXPORT void getFilesDataInArchive(const fileString& archive, const MemberCallback& callback);

/// Copies the current member of a walk into another archive, still compressed, with all data of its directory
/// entry. Replaces a member with the same name.
/// @param create if true, makes a missing target, adds to a sound one and replaces a damaged one; if false,
/// the target must be a sound archive
/// @return false if the member is refused; the target is then untouched. Reasons are: a name that is empty,
/// absolute, over 4,096 bytes, or has a ".." component, a drive letter or a NUL; a member that cannot be
/// copied; a target that cannot be begun. If another program writes the target, waits for it, for at most 5 s
/// in all during a walk. A target that could not be begun is refused for the rest of the walk.
/// @throws std::runtime_error if the new archive cannot be written, on a full disk for example
ORVLIBRARY_EXPORT bool writeFileToArchiveRaw(const fileString& target, const fileString& member,
                                             ArchiveHandle& handle, bool create, const RawDataInfo& rawInfo);
/// Whether members may be added: to a sound archive that can be written, or to an archive begun by the
/// innermost walk of this thread.
ORVLIBRARY_EXPORT bool canAddToArchive(const fileString& archive);
/// The same for the walk of this handle. False for an archive that the walk could not begin.
ORVLIBRARY_EXPORT bool canAddToArchive(const fileString& archive, const ArchiveHandle& handle);
/// Whether the walk could not begin this target. Nothing is written to it then.
ORVLIBRARY_EXPORT bool isRefused(const fileString& target, const ArchiveHandle& handle);

/// Extracts the current member to a file. It is written beside `target` and replaces it when the walk ends. A
/// large member may be extracted on its own thread while the walk goes on; damage in it is then found before
/// the walk ends. If several members go to one target, the last one counts.
/// @return false if the target exists and is read-only or locked by another writer; it is then untouched
/// @throws std::ios_base::failure if the target cannot be written; std::runtime_error if the member is
/// damaged
ORVLIBRARY_EXPORT bool extractFileFromArchive(const fileString& target, ArchiveHandle& handle,
                                              const RawDataInfo& rawInfo);
/// Tells the walk that the current member is not needed, so its content is not verified.
ORVLIBRARY_EXPORT void leaveOutMember(ArchiveHandle& handle, const RawDataInfo& rawInfo);

/// Several walks that write to the same archives, which are then completed together. Only walks started by
/// `walk` belong to the batch. If the batch is destroyed without `complete`, all archives stay unchanged. One
/// object belongs to one thread.
///
/// Each walk begins a part of the progress with the number of bytes from `getSizeOfArchive`, and reports
/// finished content with `advanceBytes`, which adds up to this number. The progress object is asked for a
/// cancel after every 8 MB of work. Work of less than 8 MB is neither reported nor asked about until its end.
/// If the work after the last member is 8 MB or more, labels name it: "checking", "putting in place".
class ORVLIBRARY_EXPORT ArchiveBatch
{
public:
    /// @param progress may be null
    explicit ArchiveBatch(std::shared_ptr<ProgressSubject> progress);
    ~ArchiveBatch();
    ArchiveBatch(const ArchiveBatch&) = delete;
    ArchiveBatch& operator=(const ArchiveBatch&) = delete;

    /// Begins an empty archive that replaces `archive` in `complete`. Until then the existing archive stays
    /// and can be walked. Other writers are kept out.
    /// @throws std::runtime_error if it cannot be written, or if another writer has it for more than 5 s;
    /// Cancelled
    void begin(const fileString& archive);
    /// Walks an archive like `getFilesDataInArchive`, but does not complete anything.
    /// @throws what `getFilesDataInArchive` throws; Cancelled
    void walk(const fileString& archive, const MemberCallback& callback);
    /// Gives all written files their names.
    /// @throws std::runtime_error if something could not be completed or a walk had failed; Cancelled
    void complete();

private:
    class Private;
    std::unique_ptr<Private> mPrivate;
};

/// Moves a file, unchanged, to a name that must be free; also to another file system. If the source cannot be
/// removed, it stays.
/// @param progress asked for a cancel; may be null
/// @return false if the name is taken; `source` is then still there
/// @throws std::runtime_error if `source` is not a regular file or `target` cannot be written; Cancelled
ORVLIBRARY_EXPORT bool moveToNewArchive(const fileString& source, const fileString& target,
                                        const std::shared_ptr<ProgressSubject>& progress);

/// A damaged member and the reason. Its name is empty if the archive as a whole cannot be read.
struct DamagedMember
{
    fileString name;
    std::string reason; ///< with the names of the archive and the member
};

/// Verifies the structure of an archive and all members, except those that are encrypted or compressed with
/// an unknown method.
/// @param progress receives the total and the finished bytes, and is asked for a cancel; may be null
/// @param damaged receives the damaged members, in any order; may be null
/// @return whether the archive is sound
/// @throws Cancelled
ORVLIBRARY_EXPORT bool verify(const fileString& archive, const std::shared_ptr<ProgressSubject>& progress,
                              std::vector<DamagedMember>* damaged);
/// Writes the sound members of a damaged archive to a new archive. The damaged one stays unchanged. If its
/// directory is lost, the whole file is searched for members; they then get back only their content, name and
/// date.
/// @param target replaced in one step; may be the archive itself
/// @param progress as for `verify`
/// @param lost receives the damaged members; may be null
/// @throws std::runtime_error if `archive` cannot be read or `target` cannot be written; Cancelled
ORVLIBRARY_EXPORT void salvage(const fileString& archive, const fileString& target,
                               const std::shared_ptr<ProgressSubject>& progress,
                               std::vector<DamagedMember>* lost);

using DataCallback = std::function<void(const std::vector<unsigned char>& data)>;

/// Delivers the whole content of a member in one piece. If several members have the name, the last one
/// counts.
/// @param memberAddress archive path + `getDelimiter()` + member name
/// @throws std::bad_alloc if memory runs out or the content is over 512 MiB; `std::runtime_error` if the
/// archive is damaged or the member is missing
ORVLIBRARY_EXPORT void writeFileDataFromArchive(const fileString& memberAddress,
                                                const DataCallback& callback);

/// Reads one member in pieces. Throws `std::runtime_error` if the archive is damaged. The checksum is
/// verified when the end of the member is reached. One object belongs to one thread.
class ORVLIBRARY_EXPORT ZipInputStream
{
public:
    /// @throws std::runtime_error if the archive or the member cannot be opened
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
