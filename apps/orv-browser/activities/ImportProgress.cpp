#include "apps/orv-browser/activities/ImportProgress.h"

#include <string>
#include <utility>

#include <QMetaObject>

namespace {

constexpr qint64 kLeastMilliseconds = 100; // between two posts

} // namespace

ImportProgress::ImportProgress(QObject& receiver, Show show, std::shared_ptr<std::atomic<bool>> cancelled)
    : mReceiver(receiver), mShow(std::move(show)), mCancelled(std::move(cancelled))
{
}

void ImportProgress::createSubProgress(std::uint64_t total)
{
    mDone = 0;
    mWhole = static_cast<qint64>(total);
    post();
}

/// The steps of `OrvHost::ArchiveImport` in the user's language.
void ImportProgress::updateLabels(const marl::unicode::String& label1, const marl::unicode::String&)
{
    const std::string label = label1.toUTF8String();
    if (label == "downloading")
        mStep = tr("downloading");
    else if (label == "reading")
        mStep = tr("reading");
    else if (label == "checking")
        mStep = tr("checking");
    else if (label == "putting in place")
        mStep = tr("putting in place");
    else
        mStep = QString::fromStdString(label);
    mDone = 0;
    mWhole = 0;
    post();
}

void ImportProgress::advanceBytes(std::uint64_t bytes)
{
    mDone += static_cast<qint64>(bytes);
    if (!mSincePost.isValid() || mSincePost.elapsed() >= kLeastMilliseconds)
        post();
}

void ImportProgress::post()
{
    mSincePost.start();
    QMetaObject::invokeMethod(
        &mReceiver, [show = mShow, step = mStep, done = mDone, whole = mWhole] { show(step, done, whole); },
        Qt::QueuedConnection);
}
