#pragma once

#include <deque>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace fuzz {

/// A run of the updater, described in lines; what the lines do not say goes on as if nothing had changed.
///
///     c                    the run is for core catalogs alone
///     x                    a full run leaves the core catalogs alone
///     eADDRESS             where the redirect leads; nowhere without an address
///     1LINE 2LINE 4LINE    a line of the hash file of that category
///     iLINE                a line of the core content index
///     hSTATUS LINES        the next header answer, its lines parted by "|"; "h-" is none, "h!" throws
///     d=BODY               the next download
///     d3000=BODY           the same, repeated up to that many bytes
///     d#LINES              the next download: an archive in lines (ArchiveScript.h) parted by "|"
///     d-42                 a download that fails with that number; "d~" leaves a part of it, "d!" throws
///     gCALLS               progress calls without a byte in front of the next download
///     p=BODY               the next page that is fetched; "p-" is none, "p!" throws
///     kCOUNT               the run is cancelled at the request of that number
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
