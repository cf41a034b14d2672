#include "tests/allocation-sweeps/AllocationScenario.h"

#include <algorithm>
#include <filesystem>
#include <new>
#include <regex>

#include <gtest/gtest.h>

#include "tests/update-sweeps/UpdateWorld.h"

namespace fs = std::filesystem;

namespace test {

namespace {

constexpr std::size_t kCut = 25;
constexpr std::size_t kHelperCut = 5;

/// Replaces time stamps, which differ between runs.
std::string comparable(const std::string& name, const std::string& content)
{
    if (std::filesystem::path(name).extension() != ".json")
        return content;
    static const std::regex stamp("\"[0-9]{8}T[0-9]{6}(\\.[0-9]+)?\"");
    return std::regex_replace(content, stamp, "\"stamp\"");
}

bool isTold(const std::string& name)
{
    return name == "user/errors.log";
}

} // namespace

FileTree AllocationScenario::tree() const
{
    const std::string& root = mHost.folder().path();
    FileTree tree;
    for (const std::string& name : listTree(root)) {
        if (!isTold(name))
            tree[name] = name.back() == '/' ? std::string() : comparable(name, readFile(root + "/" + name));
    }
    return tree;
}

void AllocationScenario::reset()
{
    for (const auto& folder : fs::directory_iterator(mHost.folder().path())) {
        if (!folder.is_directory()) {
            fs::remove(folder.path());
            continue;
        }
        for (const auto& entry : fs::directory_iterator(folder.path()))
            fs::remove_all(entry.path());
    }
    prepare();
    putBack();
}

void AllocationScenario::run()
{
    try {
        act();
    } catch (const std::bad_alloc&) {
        EXPECT_TRUE(mayThrow()) << "an exception left the operation";
    }
}

void AllocationScenario::expectSound(const FileTree& now) const
{
    for (const auto& [name, content] : mOld) {
        const bool isGone = now.count(name) == 0;
        EXPECT_TRUE(!isGone || mNew.count(name) == 0 || isExcepted(name)) << name << " is lost";
    }
    for (const auto& [name, content] : now) {
        const auto before = mOld.find(name);
        const auto after = mNew.find(name);
        const bool isKnown = (before != mOld.end() && before->second == content) ||
                             (after != mNew.end() && after->second == content);
        EXPECT_TRUE(isKnown || isExcepted(name)) << name << " is neither old nor new";
    }
}

void AllocationScenario::expectRecovered()
{
    putBack();
    EXPECT_NO_THROW(act());
    const FileTree now = tree();
    for (const auto& [name, content] : mNew) {
        const bool isThere = now.count(name) > 0;
        const bool isRight = isThere && (now.at(name) == content || now.at(name) == mNewTwice.at(name));
        EXPECT_TRUE(isRight || mayStayOut(name)) << name << " did not recover";
    }
    for (const auto& [name, content] : now)
        EXPECT_TRUE(mNew.count(name)) << name << " is left over";
}

std::size_t AllocationScenario::count(CountedThread thread)
{
    const AllocationPlan plan(0);
    run();
    return plan.count(thread);
}

bool AllocationScenario::fail(std::size_t number, CountedThread thread)
{
    reset();
    bool hasFailed;
    {
        const AllocationPlan plan(number, AllocationPlan::Whose::Ours, thread);
        run();
        hasFailed = plan.hasFailed();
    }
    expectSound(tree());
    expectRecovered();
    return hasFailed;
}

void AllocationScenario::sweep()
{
    reset();
    run(); // initialises what is created at first use
    reset();
    mOld = tree();
    const std::size_t callerCount = count(CountedThread::Caller);
    mNew = tree();
    putBack();
    run();
    mNewTwice = tree();
    sweepCaller(callerCount);
    if (hasHelpers())
        sweepHelpers();
}

void AllocationScenario::sweepCaller(std::size_t count)
{
    EXPECT_GT(count, 0u);
    for (const std::size_t cell : sweepCells(count, kCut)) {
        SCOPED_TRACE("allocation " + std::to_string(cell + 1) + " of " + std::to_string(count));
        fail(cell + 1, CountedThread::Caller);
        if (testing::Test::HasFailure())
            return;
    }
    testing::Test::RecordProperty("allocations", static_cast<int>(count));
}

/// The number of allocations on helper threads depends on timing, and so does whether a given allocation
/// happens. Each is retried until it happens.
void AllocationScenario::sweepHelpers()
{
    std::size_t most = 0;
    for (int tries = 0; tries < 5 || (most == 0 && tries < 100); ++tries) {
        reset();
        most = std::max(most, count(CountedThread::Helper));
    }
    std::size_t reached = 0;
    for (const std::size_t cell : sweepCells(most, kHelperCut)) {
        SCOPED_TRACE("allocation " + std::to_string(cell + 1) + " of " + std::to_string(most) +
                     " on helpers");
        bool isReached = false;
        for (int tries = 0; tries < 20 && !isReached && !testing::Test::HasFailure(); ++tries)
            isReached = fail(cell + 1, CountedThread::Helper);
        reached += isReached ? 1 : 0;
    }
    EXPECT_GT(reached, 0u) << "no thread did anything";
    testing::Test::RecordProperty("allocations_of_helpers", static_cast<int>(reached));
}

} // namespace test
