#include "apps/orv-browser/models/ListFile.h"

#include <algorithm>
#include <stdexcept>

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include "OrvHost/TextFile.h"
#include "OrvHost/update/HostLock.h"

namespace {

constexpr std::size_t kMostRecent = 60;

fileString fileIn(const fileString& root)
{
    return root / fileString("browser-lists.json");
}

QString textOf(const fileString& path)
{
    return QFile::decodeName(path.toNativeString().c_str());
}

bool hasEntry(const ListFile::Entries& entries, const ListFile::Entry& wanted)
{
    return std::any_of(entries.begin(), entries.end(), [&](const ListFile::Entry& entry) {
        return entry.key == wanted.key && entry.name == wanted.name;
    });
}

} // namespace

ListFile::ListFile(fileString root) : mRoot(std::move(root)) {}

ListFile::Lists ListFile::load()
try {
    return mFormer = read();
} catch (const std::runtime_error&) {
    return mFormer = {};
}

void ListFile::save(Lists& lists)
{
    const OrvHost::HostLock lock = OrvHost::HostLock::ofChange("lists");
    const Lists theirs = read();
    lists.favourites = merged(lists.favourites, mFormer.favourites, theirs.favourites);
    lists.recent = merged(lists.recent, mFormer.recent, theirs.recent);
    lists.recent.resize(std::min(lists.recent.size(), kMostRecent));
    if (lists.seenRun == mFormer.seenRun)
        lists.seenRun = theirs.seenRun;
    const QJsonObject document{
        {"favourites", written(lists.favourites)},
        {"recent", written(lists.recent)},
        {"seenRun", lists.seenRun ? static_cast<double>(*lists.seenRun) : QJsonValue(QJsonValue::Undefined)},
    };
    OrvHost::TextFile::write(fileIn(mRoot), QJsonDocument(document).toJson().toStdString());
    mFormer = lists;
}

ListFile::Lists ListFile::read() const
{
    Lists lists;
    if (!fileIn(mRoot).pathExists())
        return lists;
    const QByteArray text = QByteArray::fromStdString(OrvHost::TextFile::read(fileIn(mRoot)));
    const QJsonObject document = QJsonDocument::fromJson(text).object();
    lists.favourites = entriesOf(document["favourites"].toArray());
    lists.recent = entriesOf(document["recent"].toArray());
    if (document["seenRun"].isDouble())
        lists.seenRun = static_cast<std::int64_t>(document["seenRun"].toDouble());
    return lists;
}

ListFile::Entries ListFile::entriesOf(const QJsonArray& list) const
{
    Entries entries;
    for (const auto& value : list) {
        const QJsonObject object = value.toObject();
        const QString catalog = object["catalog"].toString();
        if (catalog.isEmpty() || !object["item"].isDouble())
            continue;
        const fileString path(QFile::encodeName(catalog).toStdString());
        entries.push_back({{catalog.startsWith(QLatin1Char('/')) ? path : mRoot / path,
                            static_cast<long long>(object["item"].toDouble())},
                           object["name"].toString(),
                           false});
    }
    return entries;
}

/// Catalogs below the root are named from there, so that the lists hold when the root is moved.
QJsonArray ListFile::written(const Entries& entries) const
{
    const QString root = textOf(mRoot / fileString());
    QJsonArray list;
    for (const Entry& entry : entries) {
        const QString path = textOf(entry.key.first);
        list.append(QJsonObject{{"catalog", path.startsWith(root) ? path.mid(root.size()) : path},
                                {"item", static_cast<double>(entry.key.second)},
                                {"name", entry.name}});
    }
    return list;
}

/// Ours, in our order, without what others have removed; then what others have added.
ListFile::Entries ListFile::merged(const Entries& ours, const Entries& former, const Entries& theirs) const
{
    Entries entries;
    for (const Entry& entry : ours)
        if (!hasEntry(former, entry) || hasEntry(theirs, entry))
            entries.push_back(entry);
    for (const Entry& entry : theirs)
        if (!hasEntry(former, entry) && !hasEntry(entries, entry))
            entries.push_back(entry);
    return entries;
}
