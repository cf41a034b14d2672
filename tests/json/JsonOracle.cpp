#include "tests/json/JsonOracle.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include <locale.h>

namespace test {

double realOf(const std::string& text)
{
    static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
    return strtod_l(text.c_str(), nullptr, plain);
}

namespace {

using Kind = JsonOracle::Kind;
using Value = JsonOracle::Value;

struct Malformed
{
};

/// Reads one text from left to right. Throws `Malformed`.
class Reader
{
public:
    explicit Reader(const std::string& text) : mText(text) {}

    Value document()
    {
        blanks();
        if (peek() != '{')
            throw Malformed();
        Value root = value(1);
        blanks();
        if (mAt != mText.size())
            throw Malformed();
        return root;
    }

private:
    static constexpr int kEnd = -1;

    int peek(std::size_t ahead = 0) const
    {
        return mAt + ahead < mText.size() ? static_cast<unsigned char>(mText[mAt + ahead]) : kEnd;
    }

    bool isDigit(std::size_t ahead) const { return peek(ahead) >= '0' && peek(ahead) <= '9'; }

    void blanks()
    {
        while (peek() != kEnd && std::string(" \t\n\v\f\r").find(mText[mAt]) != std::string::npos)
            ++mAt;
    }

    bool take(char expected)
    {
        blanks();
        if (peek() != static_cast<unsigned char>(expected))
            return false;
        ++mAt;
        return true;
    }

    void demand(char expected)
    {
        if (!take(expected))
            throw Malformed();
    }

    Value value(int level)
    {
        blanks();
        switch (peek()) {
        case '"':
            return text();
        case '{':
            return object(level);
        case '[':
            return array(level);
        case 't':
            return keyword("true", Kind::Boolean, true);
        case 'f':
            return keyword("false", Kind::Boolean, false);
        case 'n':
            return keyword("null", Kind::Null, false);
        default:
            return number();
        }
    }

    static void demandLevel(int level)
    {
        if (level > 1000)
            throw Malformed();
    }

    Value object(int level)
    {
        demandLevel(level);
        Value result;
        result.kind = Kind::Object;
        demand('{');
        if (take('}'))
            return result;
        do {
            blanks();
            std::string key = text().text;
            demand(':');
            result.members.emplace_back(std::move(key), value(level + 1));
        } while (take(','));
        demand('}');
        return result;
    }

    Value array(int level)
    {
        demandLevel(level);
        Value result;
        result.kind = Kind::Array;
        demand('[');
        if (take(']'))
            return result;
        do
            result.elements.push_back(value(level + 1));
        while (take(','));
        demand(']');
        return result;
    }

    Value keyword(const std::string& word, Kind kind, bool boolean)
    {
        if (mText.compare(mAt, word.size(), word) != 0)
            throw Malformed();
        mAt += word.size();
        Value result;
        result.kind = kind;
        result.boolean = boolean;
        return result;
    }

    Value text()
    {
        Value result;
        result.kind = Kind::Text;
        if (peek() != '"')
            throw Malformed();
        ++mAt;
        while (peek() != '"') {
            if (peek() == kEnd)
                throw Malformed();
            if (peek() == '\\')
                escape(result.text);
            else
                result.text += mText[mAt++];
        }
        ++mAt;
        return result;
    }

    void escape(std::string& to)
    {
        static const std::string kLetters = "\"\\/bfnrt";
        static const std::string kMeanings = "\"\\/\b\f\n\r\t";
        if (peek(1) == 'u') {
            utf8(codePoint(), to);
            return;
        }
        const auto which = peek(1) == kEnd ? std::string::npos : kLetters.find(mText[mAt + 1]);
        if (which == std::string::npos)
            throw Malformed();
        to += kMeanings[which];
        mAt += 2;
    }

    unsigned codePoint()
    {
        const std::string digits = mText.substr(mAt + 2, 4);
        if (digits.size() != 4 || digits.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
            throw Malformed();
        mAt += 6;
        return static_cast<unsigned>(std::strtoul(digits.c_str(), nullptr, 16));
    }

    static void utf8(unsigned point, std::string& to)
    {
        const auto byte = [&to](unsigned value) { to += static_cast<char>(value); };
        if (point < 0x80) {
            byte(point);
        } else if (point < 0x800) {
            byte(0xC0 + point / 64);
            byte(0x80 + point % 64);
        } else {
            byte(0xE0 + point / 4096);
            byte(0x80 + point / 64 % 64);
            byte(0x80 + point % 64);
        }
    }

    /// The digits from `ahead` on. The reader accumulates them as a double and fails beyond its largest
    /// value.
    std::string digits(std::size_t& ahead) const
    {
        std::string run;
        for (; isDigit(ahead); ++ahead)
            run += mText[mAt + ahead];
        return run;
    }

    static bool fitsDouble(const std::string& digits)
    {
        double sum = 0;
        for (const char digit : digits) {
            if (sum > DBL_MAX / 10 || sum * 10 > DBL_MAX - (digit - '0'))
                return false;
            sum = sum * 10 + (digit - '0');
        }
        return true;
    }

    Value number()
    {
        std::size_t ahead = peek() == '+' || peek() == '-' ? 1 : 0;
        const std::string whole = digits(ahead);
        const bool dot = peek(ahead) == '.';
        std::string fraction;
        if (dot)
            fraction = digits(++ahead);
        if (whole.empty() && fraction.empty())
            throw Malformed();
        const bool exponent = takeExponent(ahead);
        if (!dot && !exponent)
            return integer(whole, ahead);
        if (!fitsDouble(whole) || !fitsDouble(fraction))
            throw Malformed();
        Value result;
        result.kind = Kind::Real;
        result.real = realOf(mText.substr(mAt, ahead));
        mAt += ahead;
        return result;
    }

    /// An exponent marker must be followed by digits. Otherwise no number matches, and the text is malformed.
    bool takeExponent(std::size_t& ahead) const
    {
        if (peek(ahead) != 'e' && peek(ahead) != 'E')
            return false;
        ++ahead;
        if (peek(ahead) == '+' || peek(ahead) == '-')
            ++ahead;
        const std::string run = digits(ahead);
        if (run.empty() || !fitsDouble(run))
            throw Malformed();
        return true;
    }

    Value integer(const std::string& digits, std::size_t length)
    {
        const auto start = std::min(digits.find_first_not_of('0'), digits.size() - 1);
        const std::string plain = digits.substr(start);
        if (plain.size() > 10)
            throw Malformed();
        const std::int64_t size = std::stoll(plain);
        const std::int64_t signedValue = peek() == '-' ? -size : size;
        if (signedValue > INT32_MAX || signedValue < INT32_MIN)
            throw Malformed();
        mAt += length;
        Value result;
        result.kind = Kind::Integer;
        result.integer = static_cast<int>(signedValue);
        return result;
    }

    const std::string& mText;
    std::size_t mAt = 0;
};

using Node = json::grammar<char>::variant;

std::string compare(const Value& expected, const Node& node);

/// The reader's conversion may differ in the last digits, and more at the ends of the range.
bool sameReal(double expected, double found)
{
    const double size = std::fabs(expected);
    if (size == 0)
        return found == 0 || std::isnan(found);
    if (!(size > 1e-290 && size < 1e290))
        return true;
    return std::fabs(expected - found) <= 1e-13 * size || !std::isfinite(found) || found == 0;
}

std::string compareMembers(const Value& expected, const json::object& found)
{
    auto members = expected.members;
    std::reverse(members.begin(), members.end());
    std::stable_sort(members.begin(), members.end(),
                     [](const auto& left, const auto& right) { return left.first < right.first; });
    if (members.size() != found.size())
        return "number of members";
    auto at = found.begin();
    for (const auto& [key, value] : members) {
        if (at->first != key)
            return "key " + key + " against " + at->first;
        const std::string difference = compare(value, at->second);
        if (!difference.empty())
            return key + ": " + difference;
        ++at;
    }
    return {};
}

std::string compareElements(const Value& expected, const json::array& found)
{
    if (expected.elements.size() != found.size())
        return "number of elements";
    for (std::size_t i = 0; i < found.size(); ++i) {
        const std::string difference = compare(expected.elements[i], found[i]);
        if (!difference.empty())
            return "[" + std::to_string(i) + "]: " + difference;
    }
    return {};
}

std::string compareScalar(const Value& expected, const boost::any& found)
{
    const auto* text = boost::any_cast<std::string>(&found);
    const auto* real = boost::any_cast<double>(&found);
    const auto* integer = boost::any_cast<int>(&found);
    const auto* boolean = boost::any_cast<bool>(&found);
    switch (expected.kind) {
    case Kind::Text:
        return text && *text == expected.text ? "" : "text";
    case Kind::Real:
        return real && sameReal(expected.real, *real) ? "" : "real";
    case Kind::Integer:
        return integer && *integer == expected.integer ? "" : "integer";
    case Kind::Boolean:
        return boolean && *boolean == expected.boolean ? "" : "boolean";
    default:
        return found.empty() ? "" : "null";
    }
}

std::string compare(const Value& expected, const Node& node)
{
    if (!node)
        return "null pointer";
    if (expected.kind == Kind::Object) {
        const auto* found = boost::any_cast<json::object>(node.get());
        return found ? compareMembers(expected, *found) : "not an object";
    }
    if (expected.kind == Kind::Array) {
        const auto* found = boost::any_cast<json::array>(node.get());
        return found ? compareElements(expected, *found) : "not an array";
    }
    return compareScalar(expected, *node);
}

bool isLoneBrace(const std::string& text)
{
    const std::string blanks = " \t\n\v\f\r";
    const auto brace = text.find_first_not_of(blanks);
    return brace != std::string::npos && text[brace] == '{' &&
           text.find_first_not_of(blanks, brace + 1) == std::string::npos;
}

} // namespace

JsonOracle::Verdict JsonOracle::judge(const std::string& text)
{
    Verdict verdict;
    verdict.loneBrace = isLoneBrace(text);
    try {
        verdict.tree = Reader(text).document();
    } catch (const Malformed&) {
        verdict.tree.reset();
    }
    return verdict;
}

std::string compareWithOracle(const std::string& text, const json::grammar<char>::variant& result)
{
    const auto verdict = JsonOracle::judge(text);
    if (!result)
        return "null pointer";
    if (verdict.loneBrace) {
        const bool marker = boost::any_cast<json::grammar<char>::object_delimiter>(result.get()) != nullptr;
        return marker ? "" : "no marker for a lone brace";
    }
    if (!verdict.tree)
        return result->empty() ? "" : "a malformed text was read";
    return compare(*verdict.tree, result);
}

} // namespace test
