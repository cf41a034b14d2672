#pragma once

#include <map>
#include <string>
#include <vector>

#include "OrvLibrary/OrvLibraryExport.h"

/// Functions for HTTP answers. All may be called from any thread.
namespace WebUtils {

/// Orders header names and ignores the case of ASCII letters.
struct ORVLIBRARY_EXPORT HeaderNameCompare
{
    bool operator()(const std::string& left, const std::string& right) const;
};

using HeaderMap = std::map<std::string, std::vector<std::string>, HeaderNameCompare>;

/// The address at the end of all redirects, from the download service; empty if it cannot be found.
ORVLIBRARY_EXPORT std::string getUrlAfterRedirects(const std::string& url);

/// Adds the headers of a raw header block to `map`: each name with its list of values, in their order,
/// without blanks around them. The status line and lines without a colon are ignored. A header without a
/// value gets one empty value.
ORVLIBRARY_EXPORT void parseReturnHeader(const std::string& text, HeaderMap& map);

} // namespace WebUtils
