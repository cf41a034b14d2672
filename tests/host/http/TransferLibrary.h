#pragma once

#include <cstddef>
#include <string>

namespace test {

/// Makes one call to libcurl fail as if memory had run out, until the destructor. The program's calls pass
/// through wrappers; only calls of this thread are counted. Only one object may exist at a time.
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

    /// @param number the number of the failing call among the calls of this kind, from 1
    TransferLibraryFault(Call call, std::size_t number);
    ~TransferLibraryFault();
    TransferLibraryFault(const TransferLibraryFault&) = delete;
    TransferLibraryFault& operator=(const TransferLibraryFault&) = delete;

    /// Whether the failing call has happened.
    bool hasFailed() const;

    /// How many handles this thread holds.
    static int handles();
};

/// Makes the transfers of this thread trust only this certificate, until the destructor.
class TrustedCertificate
{
public:
    explicit TrustedCertificate(const std::string& path);
    ~TrustedCertificate();
    TrustedCertificate(const TrustedCertificate&) = delete;
    TrustedCertificate& operator=(const TrustedCertificate&) = delete;
};

} // namespace test
