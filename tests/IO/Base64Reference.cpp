#include "tests/IO/Base64Reference.h"

namespace test {

namespace {

const std::string kCharacters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// The character at a position. Sets `failure` if it is not allowed.
char characterAt(const std::string& text, std::size_t position, std::string& failure)
{
    if (position >= text.size())
        return 'A';
    const char c = text[position];
    if (c != '=' && kCharacters.find(c) == std::string::npos && failure.empty())
        failure = std::string("Invalid character '") + c + "' at position " + std::to_string(position) + ".";
    return c;
}

int valueOf(char c)
{
    return c == '=' ? 63 : static_cast<int>(kCharacters.find(c));
}

unsigned char lowByte(int value)
{
    return static_cast<unsigned char>(value % 256);
}

} // namespace

std::string referenceEncode(const std::vector<unsigned char>& bytes)
{
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const bool hasSecond = i + 1 < bytes.size();
        const bool hasThird = i + 2 < bytes.size();
        const unsigned first = bytes[i];
        const unsigned second = hasSecond ? bytes[i + 1] : 0;
        const unsigned third = hasThird ? bytes[i + 2] : 0;
        text += kCharacters[first / 4];
        text += kCharacters[first % 4 * 16 + second / 16];
        text += hasSecond ? kCharacters[second % 16 * 4 + third / 64] : '=';
        text += hasThird ? kCharacters[third % 64] : '=';
    }
    return text;
}

ReferenceDecoding referenceDecode(const std::string& text)
{
    ReferenceDecoding result;
    for (std::size_t p = 0; p < text.size(); p += 4) {
        const char first = characterAt(text, p, result.failure);
        const char second = characterAt(text, p + 1, result.failure);
        const char third = characterAt(text, p + 2, result.failure);
        const char fourth = characterAt(text, p + 3, result.failure);
        if (!result.failure.empty()) {
            result.bytes.clear();
            return result;
        }
        result.bytes.push_back(lowByte(valueOf(first) * 4 + valueOf(second) / 16));
        if (third != '=')
            result.bytes.push_back(lowByte(valueOf(second) * 16 + valueOf(third) / 4));
        if (fourth != '=')
            result.bytes.push_back(lowByte(valueOf(third) * 64 + valueOf(fourth)));
    }
    return result;
}

} // namespace test
