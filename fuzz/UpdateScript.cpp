#include "fuzz/UpdateScript.h"

#include <algorithm>
#include <cstdlib>

#include "fuzz/ArchiveScript.h"
#include "fuzz/FuzzSandbox.h"

namespace fuzz {

UpdateScript::UpdateScript(const std::string& text)
{
    for (const std::string& line : linesOf(text)) {
        if (!line.empty())
            addLine(line);
    }
}

void UpdateScript::addLine(const std::string& line)
{
    const std::string rest = line.substr(1);
    switch (line[0]) {
    case 'c':
        isCoreOnly = true;
        break;
    case 'x':
        isCoreExcluded = true;
        break;
    case 'e':
        endpoint = rest;
        break;
    case '1':
    case '2':
    case '4':
        hashFiles[line[0]] += rest + "\n";
        break;
    case 'i':
        index += rest + "\n";
        break;
    case 'h':
        headers.push_back(rest);
        break;
    case 'd':
        downloads.push_back(rest);
        break;
    case 'g':
        stalls.push_back(rest);
        break;
    case 'p':
        pages.push_back(rest);
        break;
    case 'k':
        cancelledRequest = std::strtoul(rest.c_str(), nullptr, 10);
        break;
    default:
        break;
    }
}

std::string UpdateScript::take(std::deque<std::string>& list, const std::string& otherwise)
{
    if (list.empty())
        return otherwise;
    const std::string first = list.front();
    list.pop_front();
    return first;
}

std::string UpdateScript::bodyOf(const std::string& download)
{
    constexpr unsigned long kLargest = 20000;
    if (!download.empty() && download[0] == '#') {
        std::string lines = download.substr(1);
        std::replace(lines.begin(), lines.end(), '|', '\n');
        return archiveOf(linesOf(lines));
    }
    const std::size_t equals = download.find('=');
    std::string body = equals == std::string::npos ? "" : download.substr(equals + 1);
    const unsigned long size = std::min(std::strtoul(download.c_str(), nullptr, 10), kLargest);
    const std::string piece = body;
    while (!piece.empty() && body.size() < size)
        body += piece;
    return body;
}

} // namespace fuzz
