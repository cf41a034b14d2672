#include "OrvHost/health/FileHash_p.h"

#include <filesystem>
#include <fstream>
#include <vector>

#include <QCryptographicHash>

#include "OrvLibrary/host/ZipUtils.h"

std::string OrvHost::FileHash::sha1Hex(const fileString& file, ProgressSubject& progress)
{
    constexpr std::size_t kPiece = 1U << 20U;
    const std::filesystem::path path = file.toNativeString();
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error))
        return {};
    progress.createSubProgress(std::filesystem::file_size(path, error));
    std::ifstream stream(path, std::ios::binary);
    std::vector<char> piece(kPiece);
    QCryptographicHash hash(QCryptographicHash::Sha1);
    while (stream.read(piece.data(), kPiece) || stream.gcount() > 0) {
        hash.addData(piece.data(), static_cast<int>(stream.gcount()));
        progress.advanceBytes(static_cast<std::uint64_t>(stream.gcount()));
        if (progress.checkCancel(false))
            throw ZipUtils::Cancelled();
    }
    return stream.eof() ? hash.result().toHex().toStdString() : std::string();
}
