#pragma once

#include <string>

namespace test {

/// The example on the page of a file format, such as "catalog_filters", without the final line break.
std::string exampleOnPage(const std::string& format);

} // namespace test
