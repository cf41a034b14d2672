#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "OrvLibrary/json/json_reader.h"

namespace test {

/// A second JSON reader for comparison: a recursive-descent reader that shares no engine, code or tree with
/// the tested reader.
class JsonOracle
{
public:
    enum class Kind
    {
        Object,
        Array,
        Text,
        Real,
        Integer,
        Boolean,
        Null
    };

    struct Value
    {
        Kind kind = Kind::Null;
        std::string text;
        double real = 0;
        int integer = 0;
        bool boolean = false;
        std::vector<std::pair<std::string, Value>> members; ///< in the order of the text
        std::vector<Value> elements;
    };

    /// The expected result for a text: nothing, a marker, or a tree.
    struct Verdict
    {
        bool loneBrace = false;
        std::optional<Value> tree;
    };

    static Verdict judge(const std::string& text);
};

/// The value of a text with a decimal point, independent of the process's locale.
double realOf(const std::string& text);

/// The difference between the reader's result and the oracle's; empty if there is none.
std::string compareWithOracle(const std::string& text, const json::grammar<char>::variant& result);

} // namespace test
