#include "OrvLibrary/catalog/CatalogAnswer_p.h"

#include <locale>
#include <sstream>

#include "OrvLibrary/host/WebUtils.h"

namespace LibraryCatalogUpdate {

namespace {

/// The text between the first and the last double quote; the whole text if there are no quotes.
std::string unquotedTag(const std::string& value)
{
    const std::size_t opening = value.find('"');
    std::string tag = opening == std::string::npos ? value : value.substr(opening + 1);
    const std::size_t closing = tag.rfind('"');
    // Deliberate: a closing quote directly after the opening one stays, so two quotes alone become one quote.
    // Kept by: LibraryCatalogUpdaterCheck.tagsLoseTheirQuotes
    if (closing != std::string::npos && closing >= 1)
        tag.resize(closing);
    return tag;
}

/// If the text is not a number, sets what stream extraction sets.
void readContentLength(const std::string& value, std::uint64_t& length)
{
    std::istringstream stream(value);
    stream.imbue(std::locale::classic());
    stream >> length;
}

} // namespace

void readAnswer(const std::string& headerText, std::int64_t status, CatalogUpdateData& record)
{
    WebUtils::HeaderMap headers;
    WebUtils::parseReturnHeader(headerText, headers);
    record.responseStatus = status;
    const auto length = headers.find("Content-Length");
    if (length != headers.end() && !length->second.empty())
        readContentLength(length->second.back(), record.contentLength);
    const auto tag = headers.find("ETag");
    if (tag != headers.end())
        record.serverETag = tag->second.empty() ? std::string() : unquotedTag(tag->second.back());
}

} // namespace LibraryCatalogUpdate
