// How it works: the header fields are read as lists of algorithms and digests. Each known algorithm gets a
// running hash, which takes the body piece by piece. `matches` ends the hashes and compares them.
#include "OrvLibrary/host/impl/files/BodyDigest_p.h"

#include <algorithm>
#include <array>
#include <map>
#include <stdexcept>
#include <utility>

#include <openssl/evp.h>

namespace host {

namespace {

bool isKeyCharacter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' || c == '-' || c == '.' || c == '*';
}

void skipBlanks(const std::string& text, std::size_t& at)
{
    while (at < text.size() && (text[at] == ' ' || text[at] == '\t'))
        ++at;
}

std::string takeKey(const std::string& text, std::size_t& at)
{
    const std::size_t start = at;
    while (at < text.size() && isKeyCharacter(text[at]))
        ++at;
    return text.substr(start, at - start);
}

bool decodeBase64(const std::string& text, std::string& bytes)
{
    if (text.size() % 4 != 0)
        return false;
    std::vector<unsigned char> buffer(text.size() / 4 * 3 + 1);
    const int size = EVP_DecodeBlock(buffer.data(), reinterpret_cast<const unsigned char*>(text.data()),
                                     static_cast<int>(text.size()));
    if (size < 0)
        return false;
    const std::size_t last = text.find_last_not_of('=');
    const std::size_t padding = text.size() - (last == std::string::npos ? 0 : last + 1);
    if (padding > 2)
        return false;
    bytes.assign(buffer.begin(), buffer.begin() + size - static_cast<std::ptrdiff_t>(padding));
    return true;
}

/// Reads ":BASE64:".
bool takeByteSequence(const std::string& text, std::size_t& at, std::string& bytes)
{
    const std::size_t end = at < text.size() && text[at] == ':' ? text.find(':', at + 1) : std::string::npos;
    if (end == std::string::npos || !decodeBase64(text.substr(at + 1, end - at - 1), bytes))
        return false;
    at = end + 1;
    return true;
}

/// Skips ";name=value" parameters. Digests do not use them.
void skipParameters(const std::string& text, std::size_t& at)
{
    if (at < text.size() && text[at] == ';')
        at = std::min(text.find(',', at), text.size());
}

} // namespace

bool parseDigestField(const std::string& text, std::vector<std::pair<std::string, std::string>>& members)
{
    std::size_t at = 0;
    for (;;) {
        skipBlanks(text, at);
        std::pair<std::string, std::string> member(takeKey(text, at), std::string());
        if (member.first.empty() || at >= text.size() || text[at++] != '=' ||
            !takeByteSequence(text, at, member.second))
            return false;
        members.push_back(std::move(member));
        skipBlanks(text, at);
        skipParameters(text, at);
        if (at >= text.size())
            return true;
        if (text[at++] != ',')
            return false;
    }
}

/// One running hash and the digest that it must equal.
class BodyDigest::Hash
{
public:
    Hash(const EVP_MD* algorithm, std::string expected, bool ofPart)
        : isOfPart(ofPart), mContext(EVP_MD_CTX_new()), mExpected(std::move(expected))
    {
        if (!mContext || EVP_DigestInit_ex(mContext, algorithm, nullptr) != 1)
            throw std::runtime_error("no digest of that kind");
    }
    ~Hash() { EVP_MD_CTX_free(mContext); }
    Hash(const Hash&) = delete;
    Hash& operator=(const Hash&) = delete;

    const bool isOfPart;

    void update(const char* data, std::size_t size) { EVP_DigestUpdate(mContext, data, size); }

    bool matches()
    {
        std::array<unsigned char, EVP_MAX_MD_SIZE> digest;
        unsigned int size = 0;
        EVP_DigestFinal_ex(mContext, digest.data(), &size);
        return std::string(digest.begin(), digest.begin() + size) == mExpected;
    }

private:
    EVP_MD_CTX* mContext;
    std::string mExpected;
};

BodyDigest::BodyDigest(const WebUtils::HeaderMap& headers)
{
    addField(headers, "Repr-Digest", false);
    addField(headers, "Content-Digest", true);
}

BodyDigest::~BodyDigest() = default;

void BodyDigest::addField(const WebUtils::HeaderMap& headers, const char* name, bool isOfPart)
{
    const auto found = headers.find(name);
    if (found == headers.end())
        return;
    // A field on several lines counts as one list.
    std::string text;
    for (const std::string& value : found->second)
        text += (text.empty() ? "" : ", ") + value;
    std::vector<std::pair<std::string, std::string>> members;
    if (!parseDigestField(text, members))
        return;
    // If an algorithm occurs twice, its last digest counts.
    std::map<std::string, std::string> last;
    for (const auto& [algorithm, expected] : members)
        last[algorithm] = expected;
    for (const auto& [algorithm, expected] : last) {
        if (algorithm == "sha-256")
            mHashes.push_back(std::make_unique<Hash>(EVP_sha256(), expected, isOfPart));
        else if (algorithm == "sha-512")
            mHashes.push_back(std::make_unique<Hash>(EVP_sha512(), expected, isOfPart));
    }
}

void BodyDigest::update(const char* data, std::size_t size)
{
    for (const auto& hash : mHashes)
        hash->update(data, size);
}

void BodyDigest::updateEarlier(const char* data, std::size_t size)
{
    for (const auto& hash : mHashes) {
        if (!hash->isOfPart)
            hash->update(data, size);
    }
}

bool BodyDigest::matches()
{
    if (!mMatches)
        mMatches =
            std::all_of(mHashes.begin(), mHashes.end(), [](const auto& hash) { return hash->matches(); });
    return *mMatches;
}

} // namespace host
