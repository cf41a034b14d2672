#include "OrvHost/update/ServiceAccess.h"

#include <filesystem>

#include "OrvHost/TextFile.h"
#include "OrvLibrary/host/Curl.h"

namespace OrvHost {

void ServiceAccess::apply() const
{
    std::error_code error;
    if (!certificates.empty() && !std::filesystem::is_directory(certificates, error))
        TextFile::read(fileString(certificates)); // only to throw if it cannot be read
    Curl::setCertificates(certificates);
    Curl::setProxy(proxy);
    Curl::setRateLimit(limitRate);
}

} // namespace OrvHost
