// How it works: the grammar recognises tokens and tells a `TreeBuilder` about each of them. Strings, escapes
// and simple integers are read by hand-written parsers, which are faster; the parsing library reads all other
// numbers. The rules are not recursive: the builder knows which container is open, and the grammar asks it.
// Only this file includes the parsing library.
#include <boost/spirit/include/classic_core.hpp>

#include "OrvLibrary/json/TreeBuilder_p.h"
#include "OrvLibrary/json/json_reader.h"

namespace json {

namespace {

namespace spirit = boost::spirit::classic;

using Node = grammar<char>::variant;

/// The six characters allowed between tokens, in every locale.
bool isBlank(char character)
{
    return character == ' ' || (character >= '\t' && character <= '\r');
}

struct Blank : spirit::char_parser<Blank>
{
    using self_t = Blank;
    template <class Character>
    bool test(Character character) const
    {
        return isBlank(character);
    }
};

int hexDigit(char character)
{
    if (character >= '0' && character <= '9')
        return character - '0';
    const char lower = static_cast<char>(character | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

/// Reads the four digits of a code point.
/// @return the end of the escape; null if it is wrong
const char* readCodePoint(const char* at, const char* last, std::string& text)
{
    if (last - at < 4)
        return nullptr;
    int codePoint = 0;
    for (const char* const end = at + 4; at != end; ++at) {
        const int digit = hexDigit(*at);
        if (digit < 0)
            return nullptr;
        codePoint = codePoint * 16 + digit;
    }
    text += unicodecvt::convert(codePoint);
    return at;
}

/// Reads an escape after its backslash.
/// @return the end of the escape; null if it is wrong
const char* readEscape(const char* at, const char* last, std::string& text)
{
    if (at == last)
        return nullptr;
    switch (*at++) {
    case '"':
    case '\\':
    case '/':
        text += at[-1];
        return at;
    case 'b':
        text += '\b';
        return at;
    case 'f':
        text += '\f';
        return at;
    case 'n':
        text += '\n';
        return at;
    case 'r':
        text += '\r';
        return at;
    case 't':
        text += '\t';
        return at;
    case 'u':
        return readCodePoint(at, last, text);
    default:
        return nullptr;
    }
}

/// The place of the next quote or backslash; `last` if there is none.
const char* endOfRun(const char* at, const char* last)
{
    while (at != last && *at != '"' && *at != '\\')
        ++at;
    return at;
}

/// Reads a string after its opening quote, in one pass: copies runs of characters and resolves escapes.
/// @return the place after the closing quote; null if the string is wrong
const char* readString(const char* at, const char* last, std::string& text)
{
    const char* end = endOfRun(at, last);
    text = std::string(at, end); // a new text, because one that grows step by step reserves more memory
    while (end != last && *end == '\\') {
        at = readEscape(end + 1, last, text);
        if (!at)
            return nullptr;
        end = endOfRun(at, last);
        text.append(at, end);
    }
    return end == last ? nullptr : end + 1;
}

/// Recognises a string. Its text goes to the builder.
class String : public spirit::parser<String>
{
public:
    using self_t = String;
    explicit String(std::string& text) : mText(text) {}

    template <class Scanner>
    typename spirit::parser_result<String, Scanner>::type parse(const Scanner& scan) const
    {
        if (scan.at_end() || *scan.first != '"')
            return scan.no_match();
        const char* const begin = scan.first;
        const char* const end = readString(begin + 1, scan.last, mText);
        if (!end)
            return scan.no_match();
        scan.first = end;
        return scan.create_match(static_cast<std::size_t>(end - begin), spirit::nil_t(), begin, end);
    }

private:
    std::string& mText;
};

/// Recognises a few digits that cannot overflow and are not part of a real: the usual number, in one pass.
/// All others are left to the parsing library.
class DigitRun : public spirit::parser<DigitRun>
{
public:
    using self_t = DigitRun;
    template <class Scanner>
    struct result
    {
        using type = typename spirit::match_result<Scanner, int>::type;
    };

    template <class Scanner>
    typename spirit::parser_result<DigitRun, Scanner>::type parse(const Scanner& scan) const
    {
        if (scan.at_end())
            return scan.no_match();
        const char* const begin = scan.first;
        const char* at = begin;
        int value = 0;
        for (; at != scan.last && *at >= '0' && *at <= '9' && at - begin < kDigits; ++at)
            value = value * 10 + (*at - '0');
        if (at == begin || (at != scan.last && goesOn(*at)))
            return scan.no_match();
        scan.first = at;
        return scan.create_match(static_cast<std::size_t>(at - begin), value, begin, at);
    }

private:
    static constexpr std::ptrdiff_t kDigits = 9;

    static bool goesOn(char character)
    {
        return (character >= '0' && character <= '9') || character == '.' || character == 'e' ||
               character == 'E';
    }
};

/// Recognises the character that closes the innermost container.
class Closer : public spirit::char_parser<Closer>
{
public:
    using self_t = Closer;
    explicit Closer(const TreeBuilder& builder) : mBuilder(builder) {}

    template <class Character>
    bool test(Character character) const
    {
        return character == mBuilder.closer();
    }

private:
    const TreeBuilder& mBuilder;
};

/// Tells the builder about a match. The parsing library passes a character, a number or a place.
template <auto action>
struct Tell
{
    TreeBuilder& builder;

    void operator()(char) const { (builder.*action)(); }
    void operator()(const char*, const char*) const { (builder.*action)(); }
};

template <class Number, void (TreeBuilder::*action)(Number)>
struct TellNumber
{
    TreeBuilder& builder;

    void operator()(Number value) const { (builder.*action)(value); }
};

/// Asks the builder a question about the innermost container.
template <bool (TreeBuilder::*question)() const>
struct Ask
{
    const TreeBuilder& builder;

    bool operator()() const { return (builder.*question)(); }
};

/// Runs the rules over a text.
/// @return the place where they stopped
const char* runRules(const char* first, const char* last, TreeBuilder& builder)
{
    using B = TreeBuilder;
    using spirit::ch_p;
    using spirit::eps_p;
    using spirit::str_p;

    const String string(builder.text());
    // Deliberate: an integer beyond 32 bits is not a number here, so the whole text is not read. The code
    // that uses the tree expects exactly `int`.
    // Kept by: JsonReader.malformedTextsYieldAnEmptyValue
    const auto number = DigitRun()[TellNumber<int, &B::addInt>{builder}] |
                        spirit::strict_real_p[TellNumber<double, &B::addDouble>{builder}] |
                        spirit::int_p[TellNumber<int, &B::addInt>{builder}];
    const auto boolean =
        str_p("true")[Tell<&B::addTrue>{builder}] | str_p("false")[Tell<&B::addFalse>{builder}];
    const auto null = str_p("null")[Tell<&B::addNull>{builder}];
    const auto opening = eps_p(Ask<&B::mayOpen>{builder}) >>
                         (ch_p('{')[Tell<&B::openObject>{builder}] | ch_p('[')[Tell<&B::openArray>{builder}]);
    const auto closing = Closer(builder)[Tell<&B::close>{builder}];

    // The rules do not call each other, so nesting needs no stack of the thread: an opening bracket starts a
    // container, and the builder knows which one is open.
    const auto comma = eps_p(Ask<&B::isEmpty>{builder}) | ',';
    const auto key = eps_p(Ask<&B::inArray>{builder}) | (string[Tell<&B::takeKey>{builder}] >> ':');
    const auto value = string[Tell<&B::addText>{builder}] | number | opening | boolean | null;
    const auto step = eps_p(Ask<&B::isOpen>{builder}) >> (closing | (comma >> key >> value));
    const auto text = ch_p('{')[Tell<&B::openObject>{builder}] >> *step;
    return spirit::parse(first, last, text, Blank()).stop;
}

} // namespace

Node parseCharacters(const char* first, const char* last)
{
    TreeBuilder builder;
    const char* stop = runRules(first, last, builder);
    while (stop != last && isBlank(*stop))
        ++stop;
    if (stop != last)
        return std::make_shared<boost::any>();
    // Deliberate: a single opening brace leaves its marker, which no caller can use.
    // Kept by: JsonReader.loneOpeningBraceLeavesItsMarker
    if (builder.isLoneBrace())
        return std::make_shared<boost::any>(grammar<char>::object_delimiter());
    const Node tree = builder.takeTree();
    return tree ? tree : std::make_shared<boost::any>();
}

namespace unicodecvt {

namespace {

char tail(int codePoint, int shift)
{
    return static_cast<char>(0x80 | (codePoint >> shift & 0x3F));
}

} // namespace

std::string convert(int codePoint)
{
    if (codePoint <= 127)
        return {static_cast<char>(codePoint)};
    if (codePoint <= 2047)
        return {static_cast<char>(0xC0 | (codePoint >> 6 & 0x1F)), tail(codePoint, 0)};
    return {static_cast<char>(0xE0 | (codePoint >> 12 & 0x0F)), tail(codePoint, 6), tail(codePoint, 0)};
}

} // namespace unicodecvt

} // namespace json
