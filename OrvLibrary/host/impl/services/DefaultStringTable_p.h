#pragma once

#include <vector>

#include "OrvLibrary/host/StringTable.h"

/// The texts of the application's translators, else the English ones that are compiled in.
class DefaultStringTable : public StringTable
{
public:
    std::string text(std::uint32_t number) const override;
    std::string translation(const std::string& key) const override;

    /// Every number that has an English text, ascending.
    static std::vector<std::uint32_t> numbers();
    /// The compiled-in text; empty when there is none.
    static std::string english(std::uint32_t number);
};
