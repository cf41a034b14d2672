#include "OrvLibrary/host/SHA1.h"

#include <cerrno>
#include <memory>
#include <vector>

#include <QCryptographicHash>
#include <openssl/evp.h>
#include <unistd.h>

#include "OrvLibrary/host/impl/files/FileHandle_p.h"
#include "OrvLibrary/host/impl/files/SHA1_p.h"

namespace {

constexpr std::size_t kPieceSize = 64 * 1024;

using Context = std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)>;

/// The algorithm, or null if a security policy forbids it. Looked up once, because the look-up takes longer
/// than hashing a small file.
const EVP_MD* sha1Algorithm()
{
    static EVP_MD* const algorithm = EVP_MD_fetch(nullptr, "SHA1", nullptr);
    return algorithm;
}

/// Passes the whole file to `add`, piece by piece.
template <class Add>
bool readPieces(int file, const Add& add)
{
    std::vector<char> piece(kPieceSize);
    for (;;) {
        const ssize_t count = read(file, piece.data(), piece.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return count == 0;
        if (!add(piece.data(), static_cast<std::size_t>(count)))
            return false;
    }
}

std::string toHex(const char* digest, int size)
{
    return QByteArray(digest, size).toHex().toStdString();
}

} // namespace

namespace host {

std::string sha1HexByOpenSsl(int file)
{
    const Context context(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
    if (!context || !sha1Algorithm() || EVP_DigestInit_ex(context.get(), sha1Algorithm(), nullptr) != 1)
        return {};
    const auto add = [&](const char* data, std::size_t size) {
        return EVP_DigestUpdate(context.get(), data, size) == 1;
    };
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int size = 0;
    if (!readPieces(file, add) || EVP_DigestFinal_ex(context.get(), digest, &size) != 1)
        return {};
    return toHex(reinterpret_cast<const char*>(digest), static_cast<int>(size));
}

std::string sha1HexByQt(int file)
{
    QCryptographicHash hash(QCryptographicHash::Sha1);
    const auto add = [&](const char* data, std::size_t size) {
        hash.addData(data, static_cast<int>(size));
        return true;
    };
    if (!readPieces(file, add))
        return {};
    const QByteArray digest = hash.result();
    return toHex(digest.constData(), digest.size());
}

} // namespace host

std::string SHA1::fileContentsToSHA1Hex(const fileString& path)
{
    const host::FileHandle file = host::openRegularFile(path.toNativeString());
    if (!file)
        return {};
    return sha1Algorithm() ? host::sha1HexByOpenSsl(file.get()) : host::sha1HexByQt(file.get());
}
