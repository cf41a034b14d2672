#include "apps/orv-browser/models/CatalogRows.h"

#include <algorithm>
#include <optional>

#include "OrvLibrary/UI/TreeFolderData.h"
#include "OrvLibrary/UI/TreeItemData.h"
#include "apps/orv-browser/models/CatalogDatabase.h"

namespace {

constexpr int kMostNameLetters = 500; // more is cut for display, with an ellipsis

std::string shortened(const std::string& name)
{
    if (name.size() <= kMostNameLetters)
        return name; // no more letters than bytes
    const QString text = QString::fromStdString(name);
    return text.size() <= kMostNameLetters ? name
                                           : (text.left(kMostNameLetters) + QChar(0x2026)).toStdString();
}

} // namespace

std::shared_ptr<CatalogRows> CatalogRows::read(const fileString& database, long long folder)
{
    auto rows = std::make_shared<CatalogRows>();
    try {
        rows->readFrom(database, folder);
    } catch (const std::exception& error) {
        rows->mNodes.clear();
        rows->mProblem = QString::fromUtf8(error.what());
    }
    return rows;
}

void CatalogRows::readFrom(const fileString& database, long long folder)
{
    const CatalogDatabase catalog(database);
    const bool isTop = folder < 0;
    for (const auto& child : catalog.folders(isTop ? std::nullopt : std::optional<long long>(folder)))
        mNodes.push_back(
            std::make_unique<Library::TreeFolderData>(child.id, database, shortened(child.name)));
    if (!isTop)
        for (const auto& item : catalog.items(folder)) {
            auto node = std::make_unique<Library::TreeItemData>(item.id, database, shortened(item.name));
            node->setSelectionPaneName(item.paneName);
            mNodes.push_back(std::move(node));
        }
    std::sort(mNodes.begin(), mNodes.end(),
              [](const auto& left, const auto& right) { return *left < *right; });
}

QList<QStandardItem*> CatalogRows::take(std::size_t count)
{
    QList<QStandardItem*> rows;
    const std::size_t end = std::min(mNodes.size(), mNext + count);
    for (; mNext < end; ++mNext)
        rows.append(mNodes[mNext].release());
    return rows;
}
