// Compares Base64 with a simple implementation in both directions, for any bytes.
#include <exception>

#include "OrvLibrary/IO/Base64.h"
#include "fuzz/FuzzSandbox.h"
#include "tests/IO/Base64Reference.h"

using fuzz::require;

namespace {

struct Decoding
{
    std::vector<unsigned char> bytes;
    std::string failure;
};

Decoding decode(const std::string& text)
try {
    return {Base64::decode(text), ""};
} catch (const Base64::InvalidCharacterException& error) {
    return {{}, error.what()};
}

void checkDecoding(const std::string& text)
{
    const test::ReferenceDecoding expected = test::referenceDecode(text);
    const Decoding decoding = decode(text);
    // The message is a C string, so a NUL byte ends it.
    require(decoding.failure == expected.failure.c_str(), "the first foreign character is named");
    require(!decoding.failure.empty() || decoding.bytes == expected.bytes, "decoding goes by the steps");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::vector<unsigned char> bytes(data, data + size);
    const std::string encoded = Base64::encode(bytes);
    require(encoded == test::referenceEncode(bytes), "encoding goes by the steps");
    require(Base64::decode(encoded) == bytes, "decoding undoes encoding");

    checkDecoding(fuzz::textOf(data, size));
    // Random bytes are rarely valid. This tests a long valid text with one invalid byte.
    std::string nearly = encoded;
    if (size > 1)
        nearly[data[0] % nearly.size()] = static_cast<char>(data[1]);
    checkDecoding(nearly);
    return 0;
}
