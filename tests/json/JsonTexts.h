#pragma once

#include <cstdint>
#include <random>
#include <string>

namespace test {

/// Generates valid and slightly invalid JSON texts. The same seed gives the same texts.
class JsonTexts
{
public:
    explicit JsonTexts(std::uint32_t seed) : mRandom(seed) {}

    /// A valid text with unusual white space, escapes and numbers.
    std::string document();
    /// The text with a few bytes changed, removed, doubled or moved.
    std::string mutate(std::string text);

private:
    std::uint32_t below(std::uint32_t limit) { return static_cast<std::uint32_t>(mRandom() % limit); }
    std::string pick(std::initializer_list<const char*> choices);
    std::string blanks();
    std::string key();
    std::string text();
    std::string character();
    std::string number();
    std::string value(int levels);
    std::string object(int levels);
    std::string array(int levels);
    void mutateOnce(std::string& text);

    std::mt19937 mRandom;
};

} // namespace test
