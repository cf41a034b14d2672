// Compares the JSON reader with the hand-written one, for any bytes.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "OrvLibrary/json/json_reader.h"
#include "tests/json/JsonOracle.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::string difference = test::compareWithOracle(text, json::parse(text.begin(), text.end()));
    if (!difference.empty()) {
        std::fprintf(stderr, "the readers differ: %s\n", difference.c_str());
        std::abort();
    }
    return 0;
}
