// Any text as a header block. A second, independent implementation of the rules gives the expected names and
// values, tag and length.
#include <algorithm>
#include <limits>

#include "OrvLibrary/catalog/CatalogAnswer_p.h"
#include "OrvLibrary/host/WebUtils.h"
#include "fuzz/FuzzSandbox.h"

using fuzz::require;

namespace {

std::string inLowerCase(std::string text)
{
    for (char& c : text)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
    return text;
}

std::string stripped(std::string text)
{
    const auto isBlank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
    while (!text.empty() && isBlank(text.back()))
        text.pop_back();
    return {std::find_if_not(text.begin(), text.end(), isBlank), text.end()};
}

using Values = std::map<std::string, std::vector<std::string>>; ///< by name in lower case

/// Adds a header with its continuation lines.
void addHeader(Values& values, const std::vector<std::string>& lines)
{
    const std::size_t colon = lines.empty() ? std::string::npos : lines[0].find(':');
    if (colon == std::string::npos || lines[0].rfind("HTTP/", 0) == 0)
        return;
    const std::string name = inLowerCase(stripped(lines[0].substr(0, colon)));
    if (name.empty())
        return;
    std::string value = stripped(lines[0].substr(colon + 1));
    for (std::size_t i = 1; i < lines.size(); ++i) {
        const std::string more = stripped(lines[i]);
        value += (value.empty() || more.empty() ? "" : " ") + more;
    }
    values[name].push_back(value);
}

Values readHeaders(const std::string& text)
{
    Values values;
    std::vector<std::string> header;
    for (const std::string& line : fuzz::linesOf(text)) {
        const bool continues = !line.empty() && (line[0] == ' ' || line[0] == '\t');
        if (!continues) {
            addHeader(values, header);
            header.clear();
        }
        if (!continues || !header.empty())
            header.push_back(line);
    }
    addHeader(values, header);
    return values;
}

/// The rule step by step: the text up to the first quote is removed, then the text from the last quote on,
/// unless that quote is at the start.
std::string tagOf(std::string value)
{
    const auto first = std::find(value.begin(), value.end(), '"');
    if (first != value.end())
        value.erase(value.begin(), first + 1);
    for (std::size_t i = value.size(); i-- > 1;) {
        if (value[i] == '"')
            return value.substr(0, i);
    }
    return value;
}

/// The result of extracting an unsigned number from a stream: the leading digits, negated if there is a minus
/// sign, the largest number on overflow, 0 without digits, and no change for an empty text.
std::uint64_t lengthOf(const std::string& value, std::uint64_t former)
{
    std::size_t at = value.find_first_not_of(" \t\n\v\f\r");
    if (at == std::string::npos)
        return former;
    const bool isNegative = value[at] == '-';
    at += isNegative || value[at] == '+' ? 1 : 0;
    constexpr std::uint64_t kLargest = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t length = 0;
    for (; at < value.size() && value[at] >= '0' && value[at] <= '9'; ++at) {
        const auto digit = static_cast<std::uint64_t>(value[at] - '0');
        if (length > (kLargest - digit) / 10)
            return kLargest;
        length = length * 10 + digit;
    }
    return isNegative ? 0 - length : length;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text = fuzz::textOf(data, size);
    const Values expected = readHeaders(text);

    WebUtils::HeaderMap headers;
    WebUtils::parseReturnHeader(text, headers);
    Values found;
    for (const auto& [name, values] : headers)
        found[inLowerCase(name)] = values;
    require(found.size() == headers.size(), "names differ in more than letter case");
    require(found == expected, "the header block is read line by line");

    LibraryCatalogUpdate::CatalogUpdateData record;
    record.serverETag = "former";
    record.contentLength = 7;
    LibraryCatalogUpdate::readAnswer(text, 200, record);
    const auto tag = expected.find("etag");
    require(record.serverETag == (tag == expected.end() ? "former" : tagOf(tag->second.back())),
            "the tag is what stands between the quotes");
    const auto length = expected.find("content-length");
    require(record.contentLength == (length == expected.end() ? 7 : lengthOf(length->second.back(), 7)),
            "the length is what extraction makes of it");
    return 0;
}
