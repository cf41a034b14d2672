#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "OrvLibrary/host/ProgressSubject.h"

namespace OrvHost {

/// One scale for the reading of many files: the bytes that they take on the disk. It stands between the
/// caller's progress object and what reads one file, whose own scale, such as the content of an archive, is
/// turned into a share of that file's size.
class FilesProgress : public ProgressSubject
{
public:
    /// Reports to nobody.
    FilesProgress() = default;
    /// @param whole the caller's object; may be null
    /// @param bytes of all files
    FilesProgress(std::shared_ptr<ProgressSubject> whole, std::uint64_t bytes);

    /// The next file is read.
    /// @throws ZipUtils::Cancelled
    void begin(const std::string& name, std::uint64_t bytes);
    /// It is read to its end, or as far as it goes.
    void end();

    bool checkCancel(bool processEvents) override;
    void createSubProgress(std::uint64_t total) override;
    void increment(const marl::unicode::String& label1, const marl::unicode::String& label2) override;
    void updateLabels(const marl::unicode::String& label1, const marl::unicode::String& label2) override;
    void advanceBytes(std::uint64_t bytes) override;

private:
    void tellUpTo(std::uint64_t bytes);

    std::shared_ptr<ProgressSubject> mWhole;
    std::uint64_t mSize = 0;  ///< of the file, in bytes
    std::uint64_t mTold = 0;  ///< of them
    std::uint64_t mTotal = 0; ///< of the reader's scale
    std::uint64_t mDone = 0;  ///< of it
};

} // namespace OrvHost
