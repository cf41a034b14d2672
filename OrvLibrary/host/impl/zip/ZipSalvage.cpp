// Works on archives that may be damaged: lists all damage, and saves the sound members.
#include <functional>

#include "OrvLibrary/host/ZipUtils.h"
#include "OrvLibrary/host/impl/zip/ZipBatch_p.h"
#include "OrvLibrary/host/impl/zip/ZipMember_p.h"
#include "OrvLibrary/host/impl/zip/ZipVerifier_p.h"

namespace ZipUtils {

namespace {

/// Goes through all members of an archive and reports their bytes to a progress object.
class MemberInspection
{
public:
    MemberInspection(const std::shared_ptr<ProgressSubject>& progress, std::vector<DamagedMember>& damaged)
        : mProgress(progress), mMeter(progress), mDamaged(damaged)
    {
    }

    ZipMeter& meter() { return mMeter; }

    /// @param onSound called for each member that is sound or cannot be checked
    /// @throws Cancelled, and whatever `onSound` throws
    void run(const ZipArchive& archive, const std::function<void(const ZipEntry&)>& onSound)
    {
        if (mProgress)
            mProgress->createSubProgress(sizeOfContent(archive));
        ZipVerifier verifier([this](std::uint64_t bytes) {
            mSeen += bytes;
            mMeter.addContent(bytes);
        });
        for (const ZipEntry& entry : archive.entries()) {
            mSeen = 0;
            if (isSound(verifier, archive, entry))
                onSound(entry);
            mMeter.addContent(entry.size - mSeen); // count the bytes that could not be read
        }
        mMeter.tellAll();
    }

private:
    bool isSound(ZipVerifier& verifier, const ZipArchive& archive, const ZipEntry& entry)
    {
        try {
            if (isReadable(entry))
                verifier.verify(archive, entry);
            return true;
        } catch (const Cancelled&) {
            throw;
        } catch (const std::runtime_error& reason) {
            mDamaged.push_back({fileString(std::string(entry.name)), reason.what()});
            return false;
        }
    }

    std::shared_ptr<ProgressSubject> mProgress;
    ZipMeter mMeter;
    std::vector<DamagedMember>& mDamaged;
    std::uint64_t mSeen = 0; ///< bytes read of the current member
};

} // namespace

bool verify(const fileString& archive, const std::shared_ptr<ProgressSubject>& progress,
            std::vector<DamagedMember>* damaged)
{
    std::vector<DamagedMember> found;
    try {
        const ZipArchive opened(archive, found);
        MemberInspection(progress, found).run(opened, [](const ZipEntry&) {});
    } catch (const Cancelled&) {
        throw;
    } catch (const std::runtime_error& reason) {
        found.push_back({fileString(), reason.what()});
    }
    const bool isSound = found.empty();
    if (damaged)
        damaged->insert(damaged->end(), found.begin(), found.end());
    return isSound;
}

void salvage(const fileString& archive, const fileString& target,
             const std::shared_ptr<ProgressSubject>& progress, std::vector<DamagedMember>* lost)
{
    std::vector<DamagedMember> found;
    const auto opened = std::make_shared<ZipArchive>(archive, found);
    MemberInspection inspection(progress, found);
    ZipPatience patience(inspection.meter());
    const auto saved = ZipTarget::beginEmpty(target, patience, inspection.meter());
    inspection.run(*opened, [&](const ZipEntry& entry) {
        if (!isSafeMemberName(entry.name) || !saved->add(entry.name, opened, entry))
            found.push_back({fileString(std::string(entry.name)), "cannot be copied"});
    });
    saved->write();
    saved->publish();
    if (lost)
        lost->insert(lost->end(), found.begin(), found.end());
}

} // namespace ZipUtils
