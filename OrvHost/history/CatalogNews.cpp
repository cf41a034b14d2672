// How it works: the file has one entry for each run that changed an item, with the new, changed and gone
// items of each catalog. `since` goes through the entries after a run in order and combines the changes of
// each item: one that came and went again is not reported, one that went and came back counts as changed.
// `NewsCollector` compares the catalogs of the current run on its own thread.
#include "OrvHost/history/CatalogNews.h"

#include <algorithm>
#include <map>
#include <stdexcept>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "OrvHost/TextFile.h"

namespace OrvHost {

namespace {

const char* const kFileName = "catalog-news.json";
const char* const kRunsFileName = "runs.json";
constexpr int kMostRuns = 50;
constexpr int kMostBytes = 16 << 20;

/// Several changes of one item, combined.
struct ItemChange
{
    enum class Kind
    {
        Added,
        Changed,
        Gone
    };
    Kind kind;
    std::string name;
};
using ItemMap = std::map<std::int64_t, ItemChange>;

QJsonArray arrayOf(const std::vector<CatalogItems::Item>& items)
{
    QJsonArray array;
    for (const CatalogItems::Item& item : items)
        array.append(
            QJsonObject{{"id", static_cast<qint64>(item.id)}, {"name", QString::fromStdString(item.name)}});
    return array;
}

QString keyOf(const CatalogPlace& place)
{
    return QString::fromLatin1(QByteArray::fromStdString(place.key()).toPercentEncoding("/"));
}

CatalogPlace placeOf(const QJsonValue& key)
{
    return CatalogPlaces::ofKey(QByteArray::fromPercentEncoding(key.toString().toUtf8()).toStdString());
}

QJsonArray readRuns(const fileString& root, const char* name = kFileName)
try {
    const std::string text = TextFile::read(root / fileString(name));
    return QJsonDocument::fromJson(QByteArray::fromStdString(text)).object()["runs"].toArray();
} catch (const std::runtime_error&) {
    return {};
}

std::int64_t numberOf(const QJsonValue& run, const char* member)
{
    return static_cast<std::int64_t>(run.toObject()[member].toDouble());
}

/// The number of the current update; at most one is active. If runs are not listed, the last number here plus
/// one.
std::int64_t currentRun(const fileString& root, const QJsonArray& news)
{
    std::int64_t number = news.isEmpty() ? 1 : numberOf(news.last(), "run") + 1;
    for (const QJsonValue& run : readRuns(root, kRunsFileName)) {
        const QJsonObject fields = run.toObject();
        if (fields["kind"].toString() == QStringLiteral("update") &&
            fields["outcome"].toString() == QStringLiteral("running"))
            number = numberOf(run, "number");
    }
    return number;
}

/// Combines a change of an item with an earlier one.
void apply(ItemMap& items, std::int64_t id, const ItemChange& change)
{
    using Kind = ItemChange::Kind;
    const auto former = items.find(id);
    if (former == items.end()) {
        items.emplace(id, change);
        return;
    }
    const Kind before = former->second.kind;
    if (before == Kind::Added && change.kind == Kind::Gone)
        items.erase(former);
    else if (before == Kind::Added)
        former->second.name = change.name;
    else if (before == Kind::Gone)
        former->second = {Kind::Changed, change.name};
    else
        former->second = change;
}

void applyAll(ItemMap& items, const QJsonArray& array, ItemChange::Kind kind)
{
    for (const QJsonValue& value : array) {
        const QJsonObject item = value.toObject();
        apply(items, static_cast<std::int64_t>(item["id"].toDouble()),
              {kind, item["name"].toString().toStdString()});
    }
}

CatalogItems::Changes listsOf(const ItemMap& items)
{
    CatalogItems::Changes changes;
    for (const auto& [id, change] : items) {
        switch (change.kind) {
        case ItemChange::Kind::Added:
            changes.added.push_back({id, change.name});
            break;
        case ItemChange::Kind::Changed:
            changes.changed.push_back({id, change.name});
            break;
        case ItemChange::Kind::Gone:
            changes.gone.push_back({id, change.name});
            break;
        }
    }
    return changes;
}

std::vector<CatalogChanges> sum(const QJsonArray& runs, std::int64_t after)
{
    std::map<CatalogPlace, ItemMap> places;
    for (const QJsonValue& run : runs) {
        if (numberOf(run, "run") <= after)
            continue;
        for (const QJsonValue& value : run.toObject()["catalogs"].toArray()) {
            const QJsonObject catalog = value.toObject();
            ItemMap& items = places[placeOf(catalog["catalog"])];
            applyAll(items, catalog["gone"].toArray(), ItemChange::Kind::Gone);
            applyAll(items, catalog["changed"].toArray(), ItemChange::Kind::Changed);
            applyAll(items, catalog["added"].toArray(), ItemChange::Kind::Added);
        }
    }
    std::vector<CatalogChanges> changes;
    for (const auto& [place, items] : places) {
        if (!items.empty())
            changes.push_back({place, listsOf(items)});
    }
    return changes;
}

} // namespace

std::vector<CatalogChanges> CatalogNews::since(const fileString& root, std::optional<std::int64_t> run)
{
    const QJsonArray runs = readRuns(root);
    if (run)
        return sum(runs, *run);
    return runs.isEmpty() ? std::vector<CatalogChanges>() : sum({runs.last()}, -1);
}

std::int64_t CatalogNews::lastRun(const fileString& root)
{
    const QJsonArray runs = readRuns(root);
    return runs.isEmpty() ? 0 : numberOf(runs.last(), "run");
}

bool CatalogNews::isKnown(const fileString& root, std::int64_t run)
{
    const auto has = [run](const QJsonArray& runs, const char* member) {
        return std::any_of(runs.begin(), runs.end(),
                           [run, member](const QJsonValue& each) { return numberOf(each, member) == run; });
    };
    return has(readRuns(root, kRunsFileName), "number") || has(readRuns(root), "run");
}

void CatalogNews::add(const fileString& root, const QDateTime& time,
                      const std::vector<CatalogChanges>& changes)
{
    if (changes.empty())
        return;
    QJsonArray catalogs;
    for (const CatalogChanges& change : changes)
        catalogs.append(QJsonObject{{"catalog", keyOf(change.place)},
                                    {"added", arrayOf(change.items.added)},
                                    {"changed", arrayOf(change.items.changed)},
                                    {"gone", arrayOf(change.items.gone)}});
    QJsonArray runs = readRuns(root);
    runs.append(QJsonObject{{"run", static_cast<qint64>(currentRun(root, runs))},
                            {"time", time.toUTC().toString(Qt::ISODate)},
                            {"catalogs", catalogs}});
    QByteArray text;
    do {
        while (runs.size() > kMostRuns)
            runs.removeFirst();
        text = QJsonDocument(QJsonObject{{"runs", runs}}).toJson(QJsonDocument::Compact) + '\n';
        runs.removeFirst();
    } while (text.size() > kMostBytes && !runs.isEmpty());
    TextFile::write(root / fileString(kFileName), text.toStdString());
}

void NewsCollector::compare(const CatalogPlace& place, const fileString& former)
{
    mPool.start([this, place, former] {
        const auto changes = CatalogItems::compare(former, place.path());
        const std::lock_guard<std::mutex> lock(mMutex);
        if (changes && !changes->empty())
            mFound.push_back({place, *changes});
    });
}

std::vector<CatalogChanges> NewsCollector::take()
{
    mPool.waitForDone();
    const std::lock_guard<std::mutex> lock(mMutex);
    std::vector<CatalogChanges> found;
    found.swap(mFound);
    std::sort(found.begin(), found.end(), [](const CatalogChanges& left, const CatalogChanges& right) {
        return left.place < right.place;
    });
    return found;
}

} // namespace OrvHost
