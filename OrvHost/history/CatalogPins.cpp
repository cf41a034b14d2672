#include "OrvHost/history/CatalogPins.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "OrvHost/TextFile.h"
#include "OrvHost/update/HashFile.h"
#include "OrvHost/update/HostLock.h"
#include "OrvLibrary/host/SHA1.h"

namespace OrvHost {

namespace {

const char* const kFileName = "catalog-pins.json";

/// Names and tags may have any bytes. All except ASCII letters, digits and "/-._
/// :" are written as "%xx".
QString encoded(const std::string& bytes)
{
    return QString::fromLatin1(QByteArray::fromStdString(bytes).toPercentEncoding("/:"));
}

std::string decoded(const QJsonValue& text)
{
    return QByteArray::fromPercentEncoding(text.toString().toUtf8()).toStdString();
}

/// @throws std::runtime_error
QJsonObject readObject(const fileString& path)
{
    if (!path.pathExists())
        return {};
    const QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromStdString(TextFile::read(path)));
    if (!document.isObject())
        throw std::runtime_error("cannot understand " + path.toNativeString() +
                                 ": repair or remove it, which releases all catalogs");
    return document.object();
}

CatalogPins::Restored restoredOf(const QJsonObject& object)
{
    CatalogPins::Restored restored;
    restored.version = decoded(object["version"]);
    restored.contents = decoded(object["contents"]);
    for (const QJsonValue& version : object["leaves"].toArray())
        restored.leaves.insert(decoded(version));
    return restored;
}

QJsonObject objectOf(const CatalogPlace& place, const CatalogPins::Restored& restored)
{
    QJsonArray leaves;
    for (const std::string& version : restored.leaves)
        leaves.append(encoded(version));
    return {{"catalog", encoded(place.key())},
            {"version", encoded(restored.version)},
            {"contents", encoded(restored.contents)},
            {"leaves", leaves}};
}

} // namespace

CatalogPins::CatalogPins(const fileString& root) : mPath(root / fileString(kFileName))
{
    const QJsonObject document = readObject(mPath);
    for (const QJsonValue& value : document["held"].toArray()) {
        const QJsonObject object = value.toObject();
        hold(CatalogPlaces::ofKey(decoded(object["catalog"])),
             {decoded(object["version"]), decoded(object["newer"])});
    }
    for (const QJsonValue& value : document["restored"].toArray()) {
        const QJsonObject object = value.toObject();
        setRestored(CatalogPlaces::ofKey(decoded(object["catalog"])), restoredOf(object));
    }
}

std::vector<std::string> CatalogPins::heldNames() const
{
    const std::vector<CatalogPlace> installed = CatalogPlaces::installed();
    std::vector<std::string> names;
    for (const auto& [place, unused] : mHeld) {
        const std::string& name = place.name;
        const auto namesakes = std::count_if(installed.begin(), installed.end(),
                                             [&](const CatalogPlace& other) { return other.name == name; });
        names.push_back(namesakes > 1 ? place.key() : name);
    }
    return names;
}

bool CatalogPins::forgetReplaced()
{
    const std::size_t before = mRestored.size();
    for (auto record = mRestored.begin(); record != mRestored.end();) {
        const auto& [place, restored] = *record;
        const std::string contents = SHA1::fileContentsToSHA1Hex(place.path());
        // If the file exists and cannot be read, it counts as unchanged.
        const bool isReplaced =
            contents != restored.contents && (!contents.empty() || !place.path().pathExists());
        record = isReplaced ? mRestored.erase(record) : std::next(record);
    }
    return mRestored.size() != before;
}

bool CatalogPins::reconcile()
{
    const bool isChanged = forgetReplaced();
    for (const auto& [place, restored] : mRestored) {
        // An archive that came with a bonus catalog has no line, and the service is not asked for it.
        if (place.tagOrThrow().empty() && place.category != CatalogCategory::Referenced)
            HashFile::set(place.hashFolder(), place.name, restored.version);
    }
    return isChanged;
}

void CatalogPins::save() const
{
    QJsonArray held, restored;
    for (const auto& [place, record] : mHeld)
        held.append(QJsonObject{{"catalog", encoded(place.key())},
                                {"version", encoded(record.version)},
                                {"newer", encoded(record.newer)}});
    for (const auto& [place, record] : mRestored)
        restored.append(objectOf(place, record));
    const QJsonObject document{{"held", held}, {"restored", restored}};
    TextFile::write(mPath, QJsonDocument(document).toJson().toStdString());
}

void CatalogPins::change(const fileString& root, const std::function<void(CatalogPins&)>& changeIt)
{
    // The first lock makes changes wait for each other. The second one refuses a change while an update runs.
    const HostLock changes = HostLock::ofChange(root, "catalog-pins");
    const HostLock update = HostLock::ofUpdate();
    CatalogPins pins(root);
    changeIt(pins);
    pins.save();
}

} // namespace OrvHost
