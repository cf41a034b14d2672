// Hashes many files as an update does. run-hashes runs its columns beside those of other programs.
//
//     bench_hashes ahead|turn FILE...      prints one hash per line
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "OrvLibrary/catalog/CatalogHashesAhead_p.h"

int main(int argc, char** argv)
{
    if (argc < 3 || (std::strcmp(argv[1], "ahead") != 0 && std::strcmp(argv[1], "turn") != 0))
        return 2;
    const std::vector<fileString> files(argv + 2, argv + argc);
    const bool isAhead = std::strcmp(argv[1], "ahead") == 0;
    LibraryCatalogUpdate::CatalogHashesAhead hashes(isAhead ? files : std::vector<fileString>());
    for (const fileString& file : files)
        std::puts(hashes.hashOf(file).c_str());
    return 0;
}
