#include "OrvLibrary/host/impl/zip/ZipVerification_p.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <future>
#include <iterator>
#include <stdexcept>
#include <thread>

#include <gmock/gmock.h>

#include "tests/host/zip/FaultySystem.h"
#include "tests/host/zip/RawCopyTest.h"
#include "tests/support/NoMoreThreads.h"
#include "tests/support/RecordingProgress.h"

using test::ArchiveBuilder;
using test::ArchiveMember;
using ZipUtils::ArchiveBatch;

namespace {

class ZipVerificationTest : public test::RawCopyTest
{
};

} // namespace

TEST_F(ZipVerificationTest, membersOfAnArchiveAreVerifiedInThatArchive)
{
    mSource.add("bad", "1").checksum = 1;
    mSource.add("last", "2");
    ArchiveBuilder other;
    other.add("sound", "3");
    const fileString source = writeSource();
    const fileString sound = other.write(mFolder, "sound.zip");
    ArchiveBatch batch(nullptr);
    const auto walkBoth = [&] {
        batch.walk(source, [&](const fileString& member, auto&, const auto&) {
            if (member.toNativeString() == "last")
                batch.walk(sound, [](const auto&, auto&, const auto&) { return true; });
            return member.toNativeString() != "last";
        });
    };
    EXPECT_THROW(walkBoth(), std::runtime_error);
}

TEST_F(ZipVerificationTest, asManyThreadsAsAreOfUseWaitForMore)
{
    for (int i = 0; i < 7; ++i)
        mSource.add(std::to_string(i), std::string(4U << 20U, 'x')).method = ArchiveMember::kStored;
    const fileString source = writeSource();
    const auto threads = [] {
        const std::filesystem::directory_iterator tasks("/proc/self/task"), end;
        return std::distance(tasks, end);
    };
    const auto before = threads();
    ArchiveBatch batch(nullptr);
    batch.walk(source, [](const auto&, auto&, const auto&) { return true; });
    std::this_thread::sleep_for(std::chrono::milliseconds(50)); // time for a thread that does not stay
    EXPECT_GT(threads(), before);
    EXPECT_LE(threads(), before + std::min(4U, std::thread::hardware_concurrency()));
}

TEST_F(ZipVerificationTest, damageThatAThreadFindsFailsTheWalk)
{
    ArchiveMember& bad = mSource.add("bad", std::string(5U << 20U, 'x'));
    bad.method = ArchiveMember::kStored;
    bad.checksum = 1;
    mSource.add("last", "1");
    ArchiveBatch batch(nullptr);
    const auto waitAtTheLast = [](const fileString& member, auto&, const auto&) {
        if (member.toNativeString() == "last")
            std::this_thread::sleep_for(std::chrono::milliseconds(200)); // a thread verifies the first one
        return true;
    };
    const fileString source = writeSource();
    EXPECT_THROW(batch.walk(source, waitAtTheLast), std::runtime_error);
}

TEST_F(ZipVerificationTest, cancelIsHeardInTheMiddleOfALargeMember)
{
    const test::NoMoreThreads none; // so the walk's own thread verifies it
    mSource.add("large", std::string(24U << 20U, 'x')).method = ArchiveMember::kStored;
    const auto progress = std::make_shared<test::RecordingProgress>();
    ArchiveBatch batch(progress);
    batch.walk(writeSource(), [](const auto&, auto&, const auto&) { return true; });
    EXPECT_GE(progress->checks(), 3);
    EXPECT_THAT(progress->calls(), testing::Contains("labels checking | "));
}

TEST_F(ZipVerificationTest, cancelIsHeardWhileAThreadVerifies)
{
    mSource.add("large", std::string(5U << 20U, 'x')).method = ArchiveMember::kStored;
    mSource.add("last", "1");
    const fileString source = writeSource();
    const auto progress = std::make_shared<test::RecordingProgress>();
    std::promise<void> begun, asked;
    std::atomic<bool> isLate{false};
    std::once_flag first;
    progress->isCancelled = [&](int check) {
        if (check == 3)
            asked.set_value();
        return check >= 3;
    };
    const auto hold = [&, walk = std::this_thread::get_id(), done = asked.get_future().share()] {
        if (std::this_thread::get_id() == walk)
            return;
        std::call_once(first, [&] { begun.set_value(); });
        isLate = done.wait_for(std::chrono::seconds(10)) != std::future_status::ready;
    };
    std::unique_ptr<test::FaultySystem> system;
    ArchiveBatch batch(progress);
    const auto waitAtTheLast = [&](const fileString& member, auto&, const auto&) {
        if (member.toNativeString() == "large")
            system = std::make_unique<test::FaultySystem>(test::FaultySystem::Call::Pread, hold);
        else
            begun.get_future().wait_for(std::chrono::seconds(10));
        return true;
    };
    const auto start = std::chrono::steady_clock::now();
    EXPECT_THROW(batch.walk(source, waitAtTheLast), ZipUtils::Cancelled);
    EXPECT_FALSE(isLate) << "the questions came only after the thread had ended";
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(3 * 50));
}
