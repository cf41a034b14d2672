#pragma once

#include <string>

#include "tests/json/JsonOracle.h"

namespace fuzz {

/// The exception for a member that has another type than a data file requires.
struct WrongType
{
};

/// The last member with this key, which is the one that counts. Null if there is none.
/// @throws WrongType if it has another type
inline const test::JsonOracle::Value* lastMember(const test::JsonOracle::Value& object,
                                                 const std::string& key, test::JsonOracle::Kind kind)
{
    const test::JsonOracle::Value* found = nullptr;
    for (const auto& [name, value] : object.members)
        found = name == key ? &value : found;
    if (found && found->kind != kind)
        throw WrongType();
    return found;
}

} // namespace fuzz
