#pragma once

#include <string>

#include "tests/json/JsonOracle.h"

namespace fuzz {

/// A member is not of the type that a data file must have there.
struct WrongType
{
};

/// The member that counts: the last one of its key. Null when there is none.
/// @throws WrongType when it is of another kind
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
