#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "OrvLibrary/host/ProgressSubject.h"
#include "tests/support/ScopedHost.h"

namespace fuzz {

/// Ends the process as a finding, which the fuzzer keeps.
[[noreturn]] void fail(const std::string& what);
/// `promise` says what was to hold.
inline void require(bool holds, const char* promise)
{
    if (!holds)
        fail(promise);
}

std::string textOf(const std::uint8_t* data, std::size_t size);
/// The pieces between the line feeds: one more than there are line feeds.
std::vector<std::string> linesOf(const std::string& text);

/// Every name below a folder with its content; folders end with a "/" and have none.
using Tree = std::map<std::string, std::string>;

/// Where a fuzzer's files lie: a fresh folder, in memory where the system has such a place ("TMPDIR" chooses
/// another one), that holds the folders of an installed host and, outside of those, files that nobody may
/// touch. There is one for the process; it is removed when the process ends well or with `fail`.
class Sandbox
{
public:
    static Sandbox& get();
    ~Sandbox();
    Sandbox(const Sandbox&) = delete;
    Sandbox& operator=(const Sandbox&) = delete;

    test::ScopedHost& host() { return *mHost; }
    /// A path below the host's root.
    fileString file(const std::string& name) const { return mHost->folder().file(name); }
    fileString write(const std::string& name, const std::string& content) const;

    /// All there is below the host's root.
    Tree tree() const;
    /// The same when the sandbox was new, and after each `reset`.
    const Tree& freshTree() const { return mFreshTree; }
    /// What is outside of the host's root is as it was made.
    void requireOutsideUntouched() const;
    /// Makes everything as it was when the sandbox was new, for the next run.
    void reset();

private:
    Sandbox();

    std::string mFolder;
    std::unique_ptr<test::ScopedHost> mHost;
    Tree mFreshTree;
    Tree mOutside;
};

/// A progress object that nobody looks at and nobody cancels.
class SilentProgress : public ProgressSubject
{
public:
    bool checkCancel(bool) override { return false; }
    void createSubProgress(std::uint64_t) override {}
    void increment(const marl::unicode::String&, const marl::unicode::String&) override {}
    void updateLabels(const marl::unicode::String&, const marl::unicode::String&) override {}
};

} // namespace fuzz
