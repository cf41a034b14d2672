#include "OrvLibrary/host/impl/zip/ZipPatience_p.h"

#include <algorithm>
#include <cerrno>

namespace ZipUtils {

std::unique_ptr<host::ReplacementFile> ZipPatience::open(const fileString& target,
                                                         host::ReplacementFile::Mode mode)
{
    using std::chrono::milliseconds;
    constexpr milliseconds kStep(50);
    using host::ReplacementFile;
    for (;;) {
        const milliseconds step = std::min(mLeft, kStep);
        std::unique_ptr<ReplacementFile> file =
            ReplacementFile::open(target.toNativeString(), mode, 0666, step);
        const bool isLocked = !file && errno == EWOULDBLOCK;
        if (!isLocked || mLeft <= step)
            return file;
        mLeft -= step;
        mMeter.waited(step);
    }
}

} // namespace ZipUtils
