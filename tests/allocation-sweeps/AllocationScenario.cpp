#include "tests/allocation-sweeps/AllocationScenario.h"

#include <filesystem>
#include <new>
#include <regex>

#include <gtest/gtest.h>

#include "tests/allocation-sweeps/AllocationPlan.h"
#include "tests/update-sweeps/UpdateWorld.h"

namespace fs = std::filesystem;

namespace test {

namespace {

constexpr std::size_t kCut = 25;

/// Stamps that differ from run to run do not count.
std::string comparable(const std::string& content)
{
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
            tree[name] = name.back() == '/' ? std::string() : comparable(readFile(root + "/" + name));
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

std::size_t AllocationScenario::run(std::size_t failing)
{
    const AllocationPlan plan(failing);
    try {
        act();
    } catch (const std::bad_alloc&) {
        EXPECT_TRUE(mayThrow()) << "an exception left the operation";
    }
    return plan.count();
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

void AllocationScenario::sweep()
{
    reset();
    run(0); // first uses
    reset();
    mOld = tree();
    const std::size_t count = run(0);
    mNew = tree();
    putBack();
    run(0);
    mNewTwice = tree();
    EXPECT_GT(count, 0u);
    for (const std::size_t cell : sweepCells(count, kCut)) {
        SCOPED_TRACE("allocation " + std::to_string(cell + 1) + " of " + std::to_string(count));
        reset();
        run(cell + 1);
        expectSound(tree());
        expectRecovered();
        if (testing::Test::HasFailure())
            return;
    }
    testing::Test::RecordProperty("allocations", static_cast<int>(count));
}

} // namespace test
