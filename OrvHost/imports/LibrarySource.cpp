#include "OrvHost/imports/LibrarySource.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include <QByteArray>

#include "OrvLibrary/host/Curl.h"
#include "OrvLibrary/host/FileUtils.h"

namespace OrvHost {

namespace {

/// The progress object of a download, and the last counts.
struct DownloadProgress
{
    std::shared_ptr<ProgressSubject> target; ///< may be null
    double total = 0;
    double done = 0;
};

int tellDownload(void* context, double total, double done, double, double)
{
    constexpr double kLargestPiece = 8e6;
    auto& progress = *static_cast<DownloadProgress*>(context);
    if (!progress.target)
        return 0;
    if (total > 0 && total != progress.total) {
        progress.target->createSubProgress(static_cast<std::uint64_t>(total));
        progress.total = total;
        progress.done = 0;
    }
    for (; progress.done < done; progress.done += std::min(done - progress.done, kLargestPiece))
        progress.target->advanceBytes(
            static_cast<std::uint64_t>(std::min(done - progress.done, kLargestPiece)));
    return progress.target->checkCancel(false) ? 1 : 0;
}

/// The value of "library=" in the query of a catalog address, which begins with "?"; empty if there is none.
std::string askedLibrary(const std::string& query)
{
    const std::string key = "library=";
    for (std::size_t at = query.find(key); at != std::string::npos; at = query.find(key, at + 1)) {
        if (query[at - 1] == '&' || query[at - 1] == '?')
            return query.substr(at + key.size(), query.find('&', at) - at - key.size());
    }
    return {};
}

/// The address with all bytes beyond ASCII escaped. Users type UTF-8, and web servers use it, but the
/// download service would read the text as Windows-1252.
std::string wireAddress(const std::string& address)
{
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string wire;
    for (const char c : address) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80)
            wire += c;
        else
            wire.append({'%', kDigits[byte >> 4], kDigits[byte & 0xF]});
    }
    return wire;
}

} // namespace

UnpackedFiles::UnpackedFiles(LibraryImport::UnpackResult result)
    : found(std::move(result)), mDatabaseGuard(found.first.second), mReferencedGuard(found.second.second)
{
}

LibrarySource::LibrarySource(const std::string& text)
    : mText(text), mUrl(wireAddress(text)), mIsAddress(Curl::get().downloadable(mUrl))
{
}

fileString LibrarySource::stem() const
{
    const fileString stem = mIsAddress ? fileString(nameInAddress()).stem() : mText.stem();
    const std::string& text = stem.toNativeString();
    if (text.empty() || text == "." || text == ".." || text.find('\0') != std::string::npos)
        throw std::runtime_error(mText.toNativeString() + ": names no library");
    return stem;
}

std::string LibrarySource::nameInAddress() const
{
    const std::string address = mText.toNativeString().substr(0, mText.toNativeString().find('#'));
    const std::size_t query = address.find('?');
    std::string name = query == std::string::npos ? std::string() : askedLibrary(address.substr(query));
    if (name.empty()) {
        const std::string path = address.substr(0, query);
        name = path.substr(path.rfind('/') + 1);
    }
    return QByteArray::fromPercentEncoding(QByteArray::fromStdString(name)).toStdString();
}

void LibrarySource::fetch(const std::shared_ptr<ProgressSubject>& progress)
{
    if (!mIsAddress || !mDownloaded.empty())
        return;
    fileString target;
    target.generateAsTempName(".orvlibz");
    DownloadProgress told{progress};
    std::string reason;
    int error = 0;
    if (!Curl::get().download_to_location(mUrl, target, {}, &told, tellDownload, reason, error))
        throw std::runtime_error(mText.toNativeString() + ": " + reason);
    mDownloaded = target;
    mDownloadGuard = std::make_unique<FileReaper>(target);
}

void LibrarySource::requireFile() const
{
    if (!mText.pathExists())
        throw std::runtime_error(mText.toNativeString() + ": no such file");
}

std::unique_ptr<UnpackedFiles> LibrarySource::unpack(const std::shared_ptr<ProgressSubject>& progress) const
{
    if (!mIsAddress)
        requireFile();
    return std::make_unique<UnpackedFiles>(unpackFile(mIsAddress ? mDownloaded : mText, true, progress));
}

LibraryImport::UnpackResult
LibrarySource::unpackBeside(const std::shared_ptr<ProgressSubject>& progress) const
{
    requireFile();
    return unpackFile(mText, false, progress);
}

/// The reason names the source that the user gave, not the temporary file of its download.
LibraryImport::UnpackResult LibrarySource::unpackFile(const fileString& archive, bool temporary,
                                                      const std::shared_ptr<ProgressSubject>& progress) const
{
    try {
        return LibraryImport::unpack(archive, temporary, progress);
    } catch (const std::exception& error) {
        std::string reason = error.what();
        const std::string path = archive.toNativeString() + ": ";
        if (reason.compare(0, path.size(), path) == 0)
            reason.erase(0, path.size());
        throw std::runtime_error(mText.toNativeString() + ": " + reason);
    }
}

void moveOver(const fileString& from, const fileString& to)
{
    std::error_code error;
    if (std::filesystem::is_directory(to.toNativeString(), error))
        throw std::runtime_error(to.toNativeString() + ": is a folder");
    if (!FileUtils::moveFile(from, to, false))
        throw std::runtime_error(to.toNativeString() + ": cannot be written");
}

fileString absolutePath(const fileString& path)
{
    std::error_code error;
    const std::filesystem::path absolute = std::filesystem::absolute(path.toNativeString(), error);
    return error ? path : fileString(absolute.lexically_normal().string());
}

} // namespace OrvHost
