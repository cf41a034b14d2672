#include "OrvLibrary/host/impl/zip/ZipBatch_p.h"

#include "OrvLibrary/host/ZipUtils.h"

namespace ZipUtils {

class Q_DECL_HIDDEN ArchiveBatch::Private
{
public:
    Private() { active().push_back(this); }
    ~Private() { active().pop_back(); }
    Private(const Private&) = delete;
    Private& operator=(const Private&) = delete;

    static std::vector<Private*>& active()
    {
        static thread_local std::vector<Private*> batches;
        return batches;
    }

    ZipTargets targets;
};

ArchiveBatch::ArchiveBatch() : mPrivate(std::make_unique<Private>()) {}

ArchiveBatch::~ArchiveBatch() = default;

void ArchiveBatch::begin(const fileString& archive)
{
    // Merging a large archive may take another process a while.
    constexpr std::chrono::seconds kWait(60);
    mPrivate->targets.beginEmpty(archive, kWait);
}

void ArchiveBatch::complete()
{
    mPrivate->targets.complete();
}

ZipTargets* currentBatch()
{
    const auto& batches = ArchiveBatch::Private::active();
    return batches.empty() ? nullptr : &batches.back()->targets;
}

std::shared_ptr<const ZipArchive> openArchive(const fileString& path)
{
    ZipTargets* batch = currentBatch();
    std::shared_ptr<const ZipArchive> archive = batch ? batch->findSource(path) : nullptr;
    if (archive)
        return archive;
    archive = std::make_shared<ZipArchive>(path);
    if (batch)
        batch->keep(archive);
    return archive;
}

} // namespace ZipUtils
