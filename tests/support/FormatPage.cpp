#include "tests/support/FormatPage.h"

#include "tests/support/TempFolder.h"

namespace test {

std::string exampleOnPage(const std::string& format)
{
    const std::string page = readFile(std::string(ORV_FORMAT_PAGES) + "/" + format + ".md");
    const std::string opening = "```json\n";
    const auto begin = page.find(opening) + opening.size();
    return page.substr(begin, page.find("\n```", begin) - begin);
}

} // namespace test
