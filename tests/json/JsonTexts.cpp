#include "tests/json/JsonTexts.h"

#include <algorithm>

namespace test {

std::string JsonTexts::pick(std::initializer_list<const char*> choices)
{
    return *(choices.begin() + below(static_cast<std::uint32_t>(choices.size())));
}

std::string JsonTexts::blanks()
{
    return below(3) ? "" : pick({" ", "\t", "\n", "\v", "\f", "\r", "  \r\n\t"});
}

std::string JsonTexts::key()
{
    return below(4) ? "\"" + pick({"a", "b", "c", "Filter", "Manufacturer", "", "\\u0061"}) + "\"" : text();
}

std::string JsonTexts::character()
{
    switch (below(8)) {
    case 0:
        return pick({"\\\"", "\\\\", "\\/", "\\b", "\\f", "\\n", "\\r", "\\t"});
    case 1:
        return pick({"\\u0000", "\\u00e9", "\\u20AC", "\\uD83D\\uDE00", "\\u007f", "\\u0080", "\\u07FF",
                     "\\u0800", "\\uFFFF"});
    case 2:
        return std::string(1, static_cast<char>(0x80 + below(0x80)));
    case 3:
        return std::string(1, static_cast<char>(below(0x20)));
    default:
        return std::string(1, static_cast<char>('a' + below(26)));
    }
}

std::string JsonTexts::text()
{
    std::string result = "\"";
    for (std::uint32_t length = below(below(10) ? 6 : 40); length > 0; --length)
        result += character();
    return result + "\"";
}

std::string JsonTexts::number()
{
    const std::string sign = pick({"", "", "", "-", "+"});
    const std::string exponent = pick({"", "", "", "e3", "E-2", "e+1", "e0", "E30"});
    switch (below(8)) {
    case 0:
        return sign + pick({"2147483647", "2147483648", "2147483649", "0002147483647", "4294967296", "007"});
    case 1:
        return sign + std::to_string(below(1000)) + "." + exponent;
    case 2:
        return sign + "." + std::to_string(below(1000)) + exponent;
    case 3:
        return sign + std::to_string(below(100)) + "." + std::to_string(below(100000)) + exponent;
    case 4:
        return sign + std::to_string(below(100)) + exponent;
    default:
        return sign + std::to_string(mRandom() >> below(32));
    }
}

std::string JsonTexts::value(int levels)
{
    switch (below(levels > 0 ? 10 : 6)) {
    case 0:
    case 1:
        return text();
    case 2:
    case 3:
        return number();
    case 4:
        return pick({"true", "false"});
    case 5:
        return "null";
    case 6:
    case 7:
        return array(levels - 1);
    default:
        return object(levels - 1);
    }
}

std::string JsonTexts::object(int levels)
{
    std::string result = blanks() + "{" + blanks();
    for (std::uint32_t i = 0, count = below(4); i < count; ++i)
        result += (i ? "," : "") + blanks() + key() + blanks() + ":" + blanks() + value(levels) + blanks();
    return result + "}" + blanks();
}

std::string JsonTexts::array(int levels)
{
    std::string result = blanks() + "[" + blanks();
    for (std::uint32_t i = 0, count = below(4); i < count; ++i)
        result += (i ? "," : "") + blanks() + value(levels) + blanks();
    return result + "]" + blanks();
}

std::string JsonTexts::document()
{
    return object(static_cast<int>(below(5)));
}

std::string JsonTexts::mutate(std::string text)
{
    for (std::uint32_t times = 1 + below(3); times > 0; --times)
        mutateOnce(text);
    return text;
}

void JsonTexts::mutateOnce(std::string& text)
{
    static const std::string kTokens = "{}[]:,\"\\+-.eE0123456789truefalsn \n\xC3";
    const auto size = static_cast<std::uint32_t>(text.size());
    const std::uint32_t at = below(size + 1);
    const std::uint32_t other = below(size + 1);
    switch (below(6)) {
    case 0:
        text.insert(at, 1, kTokens[below(static_cast<std::uint32_t>(kTokens.size()))]);
        break;
    case 1:
        text.erase(at, 1 + below(2));
        break;
    case 2:
        text.resize(at);
        break;
    case 3:
        if (at < size)
            text[at] = static_cast<char>(below(256));
        break;
    case 4:
        text.insert(at, text.substr(std::min(at, other), below(8)));
        break;
    default:
        if (at < size && other < size)
            std::swap(text[at], text[other]);
        break;
    }
}

} // namespace test
