#pragma once

#include <cstdint>
#include <string>

#include "OrvHost/OrvHostExport.h"

namespace OrvHost {

/// How the default download service reaches the network: the settings that a user behind a proxy or with a
/// private certificate authority needs. A plain value.
struct ORVHOST_EXPORT ServiceAccess
{
    /// Trusted certificates, in a PEM file or a folder of hashed certificates. If empty, those of the
    /// environment (`SSL_CERT_FILE`, `SSL_CERT_DIR`) or of the system.
    std::string certificates;
    /// Such as "http://proxy.example:3128". If empty, the environment decides.
    std::string proxy;
    /// The bytes per second that all transfers may receive together; 0 for no limit.
    std::int64_t limitRate = 0;

    /// Sets up the default download service of the process, until the next call.
    /// @throws std::runtime_error if the certificates cannot be read; nothing is changed then
    void apply() const;
};

} // namespace OrvHost
