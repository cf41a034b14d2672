#pragma once

#include <cstdint>
#include <string>

#include "OrvHost/OrvHostExport.h"

namespace OrvHost {

/// How the default download service reaches the web: what a user behind a proxy or a private certificate
/// authority has to set. A plain value.
struct ORVHOST_EXPORT ServiceAccess
{
    /// A PEM file, or a folder of hashed certificates, of the authorities to trust; empty for what the
    /// environment says (`SSL_CERT_FILE`, `SSL_CERT_DIR`), or else the system's.
    std::string certificates;
    /// Such as "http://proxy.example:3128"; empty for what the environment says.
    std::string proxy;
    /// Bytes a second that all transfers together may receive; 0 for no bound.
    std::int64_t limitRate = 0;

    /// Makes the default download service work so, in the whole process, until the next call.
    /// @throws std::runtime_error when the certificates cannot be read; nothing is changed then
    void apply() const;
};

} // namespace OrvHost
