#include "OrvHost/history/HistoryEntry.h"

#include <algorithm>
#include <filesystem>

#include "OrvHost/history/CatalogHistory.h"

namespace OrvHost {

namespace fs = std::filesystem;

namespace {

const QString kTimeFormat = QStringLiteral("yyyyMMdd'T'HHmmsszzz");
constexpr int kTimeLength = 18;
/// A file name has at most 255 bytes; the others are for the time and the extension.
constexpr int kLongestTag = 200;

bool isNewer(const HistoryEntry& left, const HistoryEntry& right)
{
    return right.file < left.file; // names begin with the time
}

} // namespace

fileString HistoryEntry::companion() const
{
    return file.pathAndName() + fileString(".zip");
}

std::optional<HistoryEntry> HistoryEntry::ofFile(const fileString& file)
{
    const QByteArray name = QByteArray::fromStdString(file.stem().toNativeString());
    QDateTime time = QDateTime::fromString(QString::fromLatin1(name.left(kTimeLength)), kTimeFormat);
    if (!time.isValid() || name.size() <= kTimeLength || name[kTimeLength] != '=')
        return {};
    time.setTimeSpec(Qt::UTC);
    return HistoryEntry{file, time, QByteArray::fromPercentEncoding(name.mid(kTimeLength + 1)).toStdString()};
}

std::vector<HistoryEntry> HistoryEntry::of(const CatalogPlace& place)
try {
    return ofOrThrow(place);
} catch (const fs::filesystem_error&) {
    return {};
}

std::vector<HistoryEntry> HistoryEntry::ofOrThrow(const CatalogPlace& place)
{
    std::vector<HistoryEntry> entries;
    const fileString folder = CatalogHistory::folderOf(place);
    if (!folder.pathExists())
        return entries;
    const fileString extension = fileString(place.name).extension();
    for (const fs::directory_entry& name : fs::directory_iterator(folder.toNativeString())) {
        const fileString file(name.path().native());
        const auto entry = ofFile(file);
        if (entry && file.extension() == extension && name.is_regular_file())
            entries.push_back(*entry);
    }
    std::sort(entries.begin(), entries.end(), isNewer);
    return entries;
}

HistoryEntry HistoryEntry::next(const CatalogPlace& place, const std::string& tag)
{
    QDateTime time = QDateTime::currentDateTimeUtc();
    const std::vector<HistoryEntry> entries = ofOrThrow(place);
    if (!entries.empty() && time <= entries.front().time)
        time = entries.front().time.addMSecs(1); // the clock was set back, or the millisecond is the same
    QByteArray encoded = QByteArray::fromStdString(tag).toPercentEncoding({}, "~");
    if (encoded.size() > kLongestTag)
        encoded.clear();
    const QByteArray name = time.toString(kTimeFormat).toLatin1() + '=' + encoded;
    const fileString file =
        CatalogHistory::folderOf(place) /
        fileString(name.toStdString() + fileString(place.name).extension().toNativeString());
    return {file, time, encoded.isEmpty() ? std::string() : tag};
}

} // namespace OrvHost
