#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "OrvHost/OrvHostExport.h"
#include "OrvHost/update/ForwardingCurl.h"

namespace OrvHost {

/// Remembers what each catalog was answered. Install it for the length of one run. May be used from any
/// thread.
class ORVHOST_EXPORT AnswerRecorder : public ForwardingCurl
{
public:
    using ForwardingCurl::ForwardingCurl;

    bool getURLHeader(const std::string& url, const std::vector<std::string>& headerLines,
                      std::string& headerText, std::int64_t& status) override;

    /// Catalog name, as it was asked for, to HTTP status; 0 where there was no answer.
    std::map<std::string, std::int64_t> answers() const;

private:
    mutable std::mutex mMutex;
    std::map<std::string, std::int64_t> mAnswers; ///< guarded by mMutex
};

} // namespace OrvHost
