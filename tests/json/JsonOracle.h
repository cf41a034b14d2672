#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "OrvLibrary/json/json_reader.h"

namespace test {

/// A second opinion on the language of the JSON reader: a recursive-descent reader that shares nothing with
/// the one it judges, neither engine nor code nor tree.
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

    /// What the reader must make of a text: nothing, a marker, or a tree.
    struct Verdict
    {
        bool loneBrace = false;
        std::optional<Value> tree;
    };

    static Verdict judge(const std::string& text);
};

/// The real number that a text with a decimal point stands for, in every locale of the process.
double realOf(const std::string& text);

/// Why what the reader made is not what the oracle says; empty when it is.
std::string compareWithOracle(const std::string& text, const json::grammar<char>::variant& result);

} // namespace test
