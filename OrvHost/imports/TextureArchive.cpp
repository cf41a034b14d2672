#include "OrvHost/imports/TextureArchive.h"

#include <filesystem>
#include <stdexcept>
#include <vector>

#include "OrvLibrary/host/FileReaper.h"
#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/ZipUtils.h"

namespace OrvHost {

namespace {

constexpr std::size_t kPiece = 1 << 20;

bool isCancelled(const std::shared_ptr<ProgressSubject>& progress)
{
    return progress && progress->checkCancel(false);
}

/// Reads a member to its end, where its checksum is compared.
/// @throws std::runtime_error for a damaged member
void readMember(const fileString& archive, const fileString& member,
                const std::shared_ptr<ProgressSubject>& progress)
{
    ZipUtils::ZipInputStream stream(archive + ZipUtils::getDelimiter() + member);
    while (stream.isFileOpen() && !stream.reachedEOF() && !isCancelled(progress)) {
        const std::size_t bytes = stream.readArchivedFile(kPiece).size();
        if (progress)
            progress->advanceBytes(bytes);
    }
}

std::set<fileString> soundMembers(const fileString& archive)
{
    std::set<fileString> sound;
    try {
        for (const fileString& member : ZipUtils::getFilenamesInArchive(archive)) {
            try {
                readMember(archive, member, nullptr);
                sound.insert(member);
            } catch (const std::exception&) {
                // This member is what is damaged.
            }
        }
    } catch (const std::exception&) {
        // The directory is damaged, so that no member can be told from another.
    }
    return sound;
}

std::size_t copyMembers(const fileString& archive, const fileString& target,
                        const std::set<fileString>& members)
{
    std::size_t copied = 0;
    ZipUtils::getFilesDataInArchive(archive, [&](const fileString& member, ZipUtils::ArchiveHandle& handle,
                                                 const ZipUtils::RawDataInfo& raw) {
        if (members.count(member) != 0)
            copied += ZipUtils::writeFileToArchiveRaw(target, member, handle, true, raw) ? 1 : 0;
        return true;
    });
    return copied;
}

void keepUnder(const fileString& archive, const fileString& name)
{
    std::error_code error;
    std::filesystem::create_hard_link(archive.toNativeString(), name.toNativeString(), error);
    if (error && !FileUtils::copyFile(archive, name, false))
        throw std::runtime_error(name.toNativeString() + ": the damaged archive cannot be kept there");
}

} // namespace

namespace TextureArchive {

std::string damageOf(const fileString& archive, const std::set<fileString>& skipped,
                     const std::shared_ptr<ProgressSubject>& progress)
{
    try {
        if (progress)
            progress->createSubProgress(ZipUtils::getSizeOfArchive(archive));
        for (const fileString& member : ZipUtils::getFilenamesInArchive(archive)) {
            if (isCancelled(progress))
                break;
            if (skipped.count(member) == 0)
                readMember(archive, member, progress);
        }
        return {};
    } catch (const std::exception& error) {
        return error.what();
    }
}

fileString setAsideName(const fileString& archive)
{
    const fileString first = archive + fileString(".damaged");
    fileString name = first;
    for (int number = 2; name.pathExists(); ++number)
        name = first + fileString("." + std::to_string(number));
    return name;
}

std::size_t setAside(const fileString& archive, const fileString& keptAs)
{
    fileString salvaged;
    salvaged.generateAsTempName(ZipUtils::getExtension());
    const FileReaper guard(salvaged);
    const std::set<fileString> members = soundMembers(archive);
    const std::size_t copied = members.empty() ? 0 : copyMembers(archive, salvaged, members);
    keepUnder(archive, keptAs);
    const bool isReplaced =
        copied == 0 ? FileUtils::removePath(archive, 1) : FileUtils::moveFile(salvaged, archive, false);
    if (!isReplaced) {
        FileUtils::removePath(keptAs, 1);
        throw std::runtime_error(archive.toNativeString() + ": cannot be written");
    }
    return copied;
}

} // namespace TextureArchive

} // namespace OrvHost
