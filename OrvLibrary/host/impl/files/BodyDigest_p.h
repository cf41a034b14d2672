#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "OrvLibrary/host/WebUtils.h"

namespace host {

/// Checks a body, as it arrives, against the digests in the `Repr-Digest` and `Content-Digest` fields of its
/// header. It knows sha-256 and sha-512. It ignores other algorithms and fields that it cannot read.
class BodyDigest
{
public:
    explicit BodyDigest(const WebUtils::HeaderMap& headers);
    ~BodyDigest();
    BodyDigest(const BodyDigest&) = delete;
    BodyDigest& operator=(const BodyDigest&) = delete;

    /// Whether there is any digest to check.
    bool isWanted() const { return !mHashes.empty(); }
    /// Takes the next bytes of the body.
    void update(const char* data, std::size_t size);
    /// Takes the bytes that the partial file already holds, when the answer brings only the rest.
    /// `Repr-Digest` covers the whole file, `Content-Digest` only the rest.
    void updateEarlier(const char* data, std::size_t size);
    /// Whether the body matches every digest. No more bytes may follow.
    bool matches();

private:
    class Hash;

    void addField(const WebUtils::HeaderMap& headers, const char* name, bool isOfPart);
    std::vector<std::unique_ptr<Hash>> mHashes;
    std::optional<bool> mMatches;
};

/// Reads a digest field such as "sha-256=:BASE64:". Each member is the algorithm and the raw bytes, in the
/// order of the text. False if the text is not a dictionary of byte sequences.
bool parseDigestField(const std::string& text, std::vector<std::pair<std::string, std::string>>& members);

} // namespace host
