#include "OrvLibrary/host/WebUtils.h"

#include <algorithm>
#include <sstream>

#include "OrvLibrary/host/Curl.h"
#include "OrvLibrary/host/impl/text/Ascii_p.h"

namespace {

const char kBlanks[] = " \t\r\n";

unsigned char lower(char c)
{
    return static_cast<unsigned char>(Ascii::lower(c));
}

std::string trimmed(const std::string& text)
{
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

bool isStatusLine(const std::string& line)
{
    return line.compare(0, 5, "HTTP/") == 0;
}

bool isFolded(const std::string& line)
{
    return !line.empty() && (line.front() == ' ' || line.front() == '\t');
}

} // namespace

namespace WebUtils {

bool HeaderNameCompare::operator()(const std::string& left, const std::string& right) const
{
    return std::lexicographical_compare(left.begin(), left.end(), right.begin(), right.end(),
                                        [](char l, char r) { return lower(l) < lower(r); });
}

std::string getUrlAfterRedirects(const std::string& url)
{
    return Curl::get().urlAfterRedirects(url);
}

void parseReturnHeader(const std::string& text, HeaderMap& map)
{
    std::istringstream lines(text);
    lines.exceptions(std::ios_base::badbit); // for lack of memory getline would just stop; now it throws
    std::string line;
    std::string* last = nullptr;
    while (std::getline(lines, line)) {
        if (isFolded(line)) {
            if (last)
                *last = trimmed(*last + ' ' + trimmed(line));
            continue;
        }
        last = nullptr;
        const std::size_t colon = line.find(':');
        if (colon == std::string::npos || isStatusLine(line))
            continue;
        const std::string name = trimmed(line.substr(0, colon));
        if (name.empty())
            continue;
        auto& values = map[name];
        values.push_back(trimmed(line.substr(colon + 1)));
        last = &values.back();
    }
}

} // namespace WebUtils
