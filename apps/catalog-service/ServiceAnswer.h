#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "apps/catalog-service/ContentFolder.h"

/// The parts of a request that the service uses.
struct ServiceRequest
{
    std::string method;
    std::string target; ///< as sent
    std::string ifNoneMatch;
    std::string range;
    std::string ifRange;
};

/// The body of an answer: a short text or a part of a file.
struct ServiceAnswer
{
    int status = 404;
    std::vector<std::pair<std::string, std::string>> headers;
    std::string text;
    std::shared_ptr<const ContentFile> file;
    std::int64_t first = 0; ///< where the part begins
    std::int64_t length = 0;
};

/// Makes the answers; called on many threads at the same time.
using ServiceHandler = std::function<ServiceAnswer(const ServiceRequest&)>;
