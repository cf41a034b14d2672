#pragma once

#include <deque>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace fuzz {

/// A run of the updater described in lines. Without a line for it, nothing has changed on the service.
///
///     c                    the run updates only core catalogs
///     x                    a full run excludes the core catalogs
///     eADDRESS             the target of the redirect; none without an address
///     1LINE 2LINE 4LINE    a line of the hash file of that category
///     iLINE                a line of the core content index
///     hSTATUS LINES        the next header response with lines separated by "|"; "h-": none, "h!": throws
///     d=BODY               the next download
///     d3000=BODY           the same, repeated up to that many bytes
///     d#LINES              the next download: an archive (ArchiveScript.h) with lines separated by "|"
///     d-42                 a download that fails with this number; "d~": leaves a part, "d!": throws
///     gCALLS               the number of progress calls without a byte before the next download
///     p=BODY               the next page; "p-": none, "p!": throws
///     kCOUNT               the run is cancelled at the request with this number
struct UpdateScript
{
    explicit UpdateScript(const std::string& text);

    bool isCoreOnly = false;
    bool isCoreExcluded = false;
    std::string endpoint = "http://service.test/?a=1";
    std::map<char, std::string> hashFiles; ///< texts, by the category's digit
    std::string index;
    std::deque<std::string> headers; ///< what stands behind the letter, in order
    std::deque<std::string> downloads;
    std::deque<std::string> stalls;
    std::deque<std::string> pages;
    unsigned long cancelledRequest = 0; ///< 0 for none

    /// Takes the first of a list; `otherwise` from an empty one.
    static std::string take(std::deque<std::string>& list, const std::string& otherwise);
    /// The bytes of a download that goes well.
    static std::string bodyOf(const std::string& download);

private:
    void addLine(const std::string& line);
};

} // namespace fuzz
