#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "apps/catalog-service/ContentFolder.h"

/// A request, as far as the service is concerned.
struct ServiceRequest
{
    std::string method;
    std::string target; ///< as sent
    std::string ifNoneMatch;
    std::string range;
    std::string ifRange;
};

/// The body of an answer: a short text, or a part of a file.
struct ServiceAnswer
{
    int status = 404;
    std::vector<std::pair<std::string, std::string>> headers;
    std::string text;
    std::shared_ptr<const ContentFile> file;
    std::int64_t first = 0; ///< where the part of the file starts
    std::int64_t length = 0;
};

/// Makes the answers; called from many threads at once.
using ServiceHandler = std::function<ServiceAnswer(const ServiceRequest&)>;
