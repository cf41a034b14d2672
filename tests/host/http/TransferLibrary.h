#pragma once

#include <cstddef>
#include <string>

namespace test {

/// The calls that this program makes to the transfer library, all of which pass through here. Lets one of
/// them fail as it does where memory has run out, from construction to the end of the block; of the calls of
/// this thread alone. One at a time.
class TransferLibraryFault
{
public:
    enum class Call
    {
        NewHandle,
        AddHeaderLine,
        AddTransfer,
        MoveOn
    };

    /// @param number the call of that kind that fails, counted from 1
    TransferLibraryFault(Call call, std::size_t number);
    ~TransferLibraryFault();
    TransferLibraryFault(const TransferLibraryFault&) = delete;
    TransferLibraryFault& operator=(const TransferLibraryFault&) = delete;

    /// Whether the call was reached.
    bool hasFailed() const;

    /// How many handles this thread has taken from the library and not given back.
    static int handles();
};

/// Lets the transfers of this thread trust a certificate, and no others, from construction to the end of the
/// block.
class TrustedCertificate
{
public:
    explicit TrustedCertificate(const std::string& path);
    ~TrustedCertificate();
    TrustedCertificate(const TrustedCertificate&) = delete;
    TrustedCertificate& operator=(const TrustedCertificate&) = delete;
};

} // namespace test
