#pragma once

#include <map>
#include <string>
#include <vector>

#include "OrvLibrary/OrvLibraryExport.h"

/// Helpers around HTTP answers. All may be called from any thread.
namespace WebUtils {

/// Orders header names without regard to ASCII letter case.
struct ORVLIBRARY_EXPORT HeaderNameCompare
{
    bool operator()(const std::string& left, const std::string& right) const;
};

using HeaderMap = std::map<std::string, std::vector<std::string>, HeaderNameCompare>;

/// The final address after redirects, asked of the download service; empty when it cannot be resolved.
ORVLIBRARY_EXPORT std::string getUrlAfterRedirects(const std::string& url);

/// Adds the headers of a raw header block to `map`: name to the list of its values, in the order in which
/// they came, blanks around a value removed. The status line and lines without a colon are passed over; a
/// header without a value is there with one empty value.
ORVLIBRARY_EXPORT void parseReturnHeader(const std::string& text, HeaderMap& map);

} // namespace WebUtils
