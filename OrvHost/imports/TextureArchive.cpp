#include "OrvHost/imports/TextureArchive.h"

#include <filesystem>
#include <stdexcept>

#include "OrvLibrary/host/FileUtils.h"
#include "OrvLibrary/host/ZipUtils.h"

namespace OrvHost {

namespace {

/// If the archive is a link, the file behind it is kept, because that one will be replaced.
void keepUnder(const fileString& archive, const fileString& name)
{
    std::error_code error;
    const std::filesystem::path file = std::filesystem::canonical(archive.toNativeString(), error);
    if (!error)
        std::filesystem::create_hard_link(file, name.toNativeString(), error);
    if (error && !FileUtils::copyFile(archive, name, false))
        throw std::runtime_error(name.toNativeString() + ": the damaged archive cannot be kept there");
}

} // namespace

namespace TextureArchive {

std::string damageOf(const fileString& archive, const std::set<fileString>& skipped,
                     const std::shared_ptr<ProgressSubject>& progress)
{
    std::vector<ZipUtils::DamagedMember> damaged;
    ZipUtils::verify(archive, progress, &damaged);
    for (const ZipUtils::DamagedMember& member : damaged)
        if (skipped.count(member.name) == 0)
            return member.reason;
    return {};
}

fileString setAsideName(const fileString& archive)
{
    const fileString first = archive + fileString(".damaged");
    fileString name = first;
    for (int number = 2; name.pathExists(); ++number)
        name = first + fileString("." + std::to_string(number));
    return name;
}

std::vector<std::string> setAside(const fileString& archive, const fileString& keptAs,
                                  const std::shared_ptr<ProgressSubject>& progress)
{
    keepUnder(archive, keptAs);
    std::vector<ZipUtils::DamagedMember> lost;
    try {
        ZipUtils::salvage(keptAs, archive, progress, &lost);
    } catch (...) {
        FileUtils::removePath(keptAs, 1);
        throw;
    }
    std::vector<std::string> names;
    for (const ZipUtils::DamagedMember& member : lost)
        if (!member.name.empty())
            names.push_back(member.name.toNativeString());
    return names;
}

} // namespace TextureArchive

} // namespace OrvHost
