#pragma once

#include <deque>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <type_traits>

#include <boost/any.hpp>

/// Reads JSON into a tree of nodes of any type. The functions have no state of their own, so any number of
/// threads may use them at the same time. A tree belongs to its caller.
namespace json {

/// The types of the reader. The rules are in the only source file that includes the parsing library.
template <class Char>
class grammar
{
public:
    /// A node of the tree; never null. It holds exactly one of `json::object`, `json::array`, `std::string`,
    /// `double` (a number with a fraction or an exponent), `int` (any other number), `bool`, or nothing for
    /// null.
    using variant = std::shared_ptr<boost::any>;

    /// Marks a container that is not closed.
    struct object_delimiter
    {
    };
    struct array_delimiter
    {
    };
};

/// The members of an object by key, compared byte by byte. Equal keys are in reverse order of the text:
/// `find` returns the last one, and the equal range goes from the last to the first.
using object = std::multimap<std::string, grammar<char>::variant, std::less<std::string>>;
/// The elements of an array, in the order of the text.
using array = std::deque<grammar<char>::variant>;

/// Text with containers nested deeper than this is not read.
constexpr int kDeepestNesting = 1000;

namespace unicodecvt {

/// A code point up to 0xFFFF as UTF-8, in one to three bytes. Each surrogate is encoded on its own.
std::string convert(int codePoint);

} // namespace unicodecvt

/// `parse` for plain characters.
grammar<char>::variant parseCharacters(const char* first, const char* last);

/// Whether these iterators point into contiguous memory.
template <class Iterator>
constexpr bool kIsContiguous =
    std::is_pointer<Iterator>::value || std::is_same<Iterator, std::string::const_iterator>::value ||
    std::is_same<Iterator, std::string::iterator>::value;

/// Parses a whole text, usually given by the iterators of a `std::string`. Text that is not contiguous is
/// copied first.
/// @return a node with the root `json::object`. If the text is not valid, the node holds nothing; for a
/// single opening brace it holds an `object_delimiter`. Throws only if memory runs out.
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
