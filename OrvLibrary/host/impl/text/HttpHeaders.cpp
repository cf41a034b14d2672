#include "OrvLibrary/host/impl/text/HttpHeaders_p.h"

#include <algorithm>
#include <charconv>
#include <iterator>

#include "OrvLibrary/host/impl/text/Ascii_p.h"

namespace {

/// The last value of a header; null if the header is missing.
const std::string* lastValue(const WebUtils::HeaderMap& headers, const char* name)
{
    const auto found = headers.find(name);
    return found == headers.end() ? nullptr : &found->second.back();
}

/// Reads a number and moves `at` past it.
bool takeNumber(const char*& at, const char* end, std::int64_t& number)
{
    const auto result = std::from_chars(at, end, number);
    at = result.ptr;
    return result.ec == std::errc() && number >= 0;
}

std::string wireLine(const std::string& line)
{
    std::string result;
    std::copy_if(line.begin(), line.end(), std::back_inserter(result), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte >= 0x20 && byte != 0x7F;
    });
    return result;
}

bool isCacheControl(const std::string& line)
{
    return Ascii::equal(line.substr(0, line.find(':')), "Cache-Control");
}

} // namespace

namespace HttpHeaders {

std::vector<std::string> wireLines(const std::vector<std::string>& lines)
{
    std::vector<std::string> result;
    std::transform(lines.begin(), lines.end(), std::back_inserter(result), wireLine);
    if (std::none_of(lines.begin(), lines.end(), isCacheControl))
        result.push_back("Cache-Control: no-cache");
    return result;
}

std::int64_t contentLength(const WebUtils::HeaderMap& headers)
{
    const std::string* const text = lastValue(headers, "Content-Length");
    if (!text)
        return -1;
    const char* at = text->data();
    const char* const end = at + text->size();
    std::int64_t length = -1;
    return takeNumber(at, end, length) && at == end ? length : -1;
}

std::int64_t lengthOfRest(const WebUtils::HeaderMap& headers, std::int64_t from)
{
    const std::string* const text = lastValue(headers, "Content-Range");
    if (!text || text->compare(0, 6, "bytes ") != 0)
        return -1;
    const char* at = text->data() + 6;
    const char* const end = text->data() + text->size();
    std::int64_t first = -1;
    std::int64_t last = -1;
    std::int64_t length = -1;
    const bool isWell = takeNumber(at, end, first) && at != end && *at++ == '-' &&
                        takeNumber(at, end, last) && at != end && *at++ == '/' &&
                        takeNumber(at, end, length) && at == end;
    return isWell && first == from && last + 1 == length ? length : -1;
}

bool isOfVersion(const WebUtils::HeaderMap& headers, const std::string& validator)
{
    const bool isTag = validator.front() == '"';
    const std::string* const own = lastValue(headers, isTag ? "ETag" : "Last-Modified");
    return !own || *own == validator;
}

std::string encodingProblem(const WebUtils::HeaderMap& headers)
{
    const auto found = headers.find("Content-Encoding");
    if (found == headers.end())
        return {};
    for (const std::string& value : found->second) {
        if (!value.empty() && !Ascii::equal(value, "identity"))
            return "the body is encoded (Content-Encoding: " + value + ")";
    }
    return {};
}

} // namespace HttpHeaders
