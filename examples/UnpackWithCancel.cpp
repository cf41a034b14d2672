// Unpacks a library archive and shows its progress in the terminal. Control-C cancels and leaves no files
// behind.
#include <atomic>
#include <csignal>
#include <iostream>

#include <QCoreApplication>

#include "OrvLibrary/IO/LibraryImport.h"
#include "OrvLibrary/host/ProgressSubject.h"

namespace {

std::atomic<bool> cancelled{false};

class TerminalProgress : public ProgressSubject
{
public:
    bool checkCancel(bool) override { return cancelled; }
    void createSubProgress(std::uint64_t total) override { std::cout << total << " bytes to unpack\n"; }
    void increment(const marl::unicode::String& label1, const marl::unicode::String&) override
    {
        std::cout << label1 << "\n";
    }
    void updateLabels(const marl::unicode::String& label1, const marl::unicode::String&) override
    {
        std::cout << label1 << "\n";
    }
};

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication qt(argc, argv);
    std::signal(SIGINT, [](int) { cancelled = true; });

    const fileString archive(argc > 1 ? argv[1] : "");
    try {
        const auto [library, referenced] =
            LibraryImport::unpack(archive, true, std::make_shared<TerminalProgress>());
        std::cout << "database:         " << (library.first ? library.second.toNativeString() : "none")
                  << "\n"
                  << "referenced files: " << (referenced.first ? referenced.second.toNativeString() : "none")
                  << std::endl;
    } catch (const std::exception& error) { // the archive is damaged; no files are left
        std::cerr << error.what() << std::endl;
        return 1;
    }
}
