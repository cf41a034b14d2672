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

/// Ends the process with a finding, and the fuzzer keeps the input.
[[noreturn]] void fail(const std::string& what);
/// Fails unless `holds`. `promise` is the guarantee that is checked.
inline void require(bool holds, const char* promise)
{
    if (!holds)
        fail(promise);
}

std::string textOf(const std::uint8_t* data, std::size_t size);
/// The text between the line feeds: one piece more than there are line feeds.
std::vector<std::string> linesOf(const std::string& text);

/// Every name below a folder with its content. Names of folders end with "/" and have no content.
using Tree = std::map<std::string, std::string>;

/// The files of a fuzzer: a fresh folder, in memory if the system supports it ("TMPDIR" overrides this). It
/// contains the folders of an installed host and, outside of them, files that must stay unchanged. There is
/// one sandbox per process. It is removed at a normal exit and by `fail`.
class Sandbox
{
public:
    static Sandbox& get();
    ~Sandbox();
    Sandbox(const Sandbox&) = delete;
    Sandbox& operator=(const Sandbox&) = delete;

    test::ScopedHost& host() { return *mHost; }
    /// The path of a file below the host's root.
    fileString file(const std::string& name) const { return mHost->folder().file(name); }
    fileString write(const std::string& name, const std::string& content) const;

    /// All files below the host's root.
    Tree tree() const;
    /// The files when the sandbox was new, and after each `reset`.
    const Tree& freshTree() const { return mFreshTree; }
    /// Fails if a file outside the host's root has changed.
    void requireOutsideUntouched() const;
    /// Restores the state of a new sandbox.
    void reset();

private:
    Sandbox();

    std::string mFolder;
    std::unique_ptr<test::ScopedHost> mHost;
    Tree mFreshTree;
    Tree mOutside;
};

/// A progress object that ignores all calls and never cancels.
class SilentProgress : public ProgressSubject
{
public:
    bool checkCancel(bool) override { return false; }
    void createSubProgress(std::uint64_t) override {}
    void increment(const marl::unicode::String&, const marl::unicode::String&) override {}
    void updateLabels(const marl::unicode::String&, const marl::unicode::String&) override {}
};

} // namespace fuzz
