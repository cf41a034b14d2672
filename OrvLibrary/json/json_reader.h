#pragma once

#include <deque>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <type_traits>

#include <boost/any.hpp>

/// Reading of JSON files into a tree of type-erased nodes. The functions keep all their state in the call and
/// may run on any number of threads at once; a tree belongs to its caller.
namespace json {

/// The language's types. The rules themselves stand in the one source file that sees the parsing engine.
template <class Char>
class grammar
{
public:
    /// A node of the tree, never a null pointer. It holds exactly one of `json::object`, `json::array`,
    /// `std::string`, `double` (a number with a fraction or an exponent), `int` (any other number), `bool`,
    /// or nothing at all for null.
    using variant = std::shared_ptr<boost::any>;

    /// The entry on the parse stack for a container that has not been closed yet.
    struct object_delimiter
    {
    };
    struct array_delimiter
    {
    };
};

/// The members of an object by key, byte-wise. Equal keys stand in reverse order of the text: `find` gives
/// the one that comes last in it, and the equal range runs from the last to the first.
using object = std::multimap<std::string, grammar<char>::variant, std::less<std::string>>;
/// The elements of an array in the order of the text.
using array = std::deque<grammar<char>::variant>;

/// Containers nested deeper than this are not read.
constexpr int kDeepestNesting = 1000;

namespace unicodecvt {

/// UTF-8 of a code point up to 0xFFFF, in one to three bytes. Surrogates are encoded each by itself.
std::string convert(int codePoint);

} // namespace unicodecvt

/// `parse` over plain characters.
grammar<char>::variant parseCharacters(const char* first, const char* last);

/// Whether the characters of any range of such iterators lie side by side in memory.
template <class Iterator>
constexpr bool kIsContiguous =
    std::is_pointer<Iterator>::value || std::is_same<Iterator, std::string::const_iterator>::value ||
    std::is_same<Iterator, std::string::iterator>::value;

/// Reads a whole text, usually given by the iterators of a `std::string`; others are read from a copy.
/// @return a node that holds the root `json::object`; for a text that is not of the language a node that
/// holds nothing, and for a lone opening brace one that holds an `object_delimiter`. Only exhaustion of
/// memory throws.
template <class Iterator>
grammar<char>::variant parse(Iterator first, Iterator last)
{
    using Traits = std::iterator_traits<Iterator>;
    static_assert(std::is_same<typename Traits::value_type, char>::value, "texts are made of char");
    if constexpr (kIsContiguous<Iterator>) {
        if (first == last)
            return parseCharacters(nullptr, nullptr);
        const char* const begin = &*first;
        return parseCharacters(begin, begin + (last - first));
    } else {
        const std::string text(first, last);
        return parse(text.begin(), text.end());
    }
}

} // namespace json
