#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "OrvLibrary/host/WebUtils.h"

/// Checks a body against the `Repr-Digest` and `Content-Digest` fields that came with it, as it arrives. The
/// algorithms are sha-256 and sha-512; others, and fields that are no dictionary of byte sequences, promise
/// nothing and are passed over.
class BodyDigest
{
public:
    explicit BodyDigest(const WebUtils::HeaderMap& headers);
    ~BodyDigest();
    BodyDigest(const BodyDigest&) = delete;
    BodyDigest& operator=(const BodyDigest&) = delete;

    /// Whether anything was announced.
    bool isWanted() const { return !mHashes.empty(); }
    /// Takes the next bytes of the body.
    void update(const char* data, std::size_t size);
    /// Takes bytes of the whole file that stand before the part that this answer brings. `Repr-Digest` is of
    /// the whole file, `Content-Digest` of the part.
    void updateEarlier(const char* data, std::size_t size);
    /// Whether every digest that was announced is the body's. No bytes can be taken after that.
    bool matches();

private:
    class Hash;

    void addField(const WebUtils::HeaderMap& headers, const char* name, bool isOfPart);
    std::vector<std::unique_ptr<Hash>> mHashes;
    std::optional<bool> mMatches;
};

/// The members of a digest field, algorithm and raw bytes, in the order in which they stand. False when the
/// text is no dictionary of byte sequences.
bool parseDigestField(const std::string& text, std::vector<std::pair<std::string, std::string>>& members);
