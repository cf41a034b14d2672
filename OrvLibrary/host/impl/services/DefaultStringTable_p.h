#pragma once

#include <vector>

#include "OrvLibrary/host/StringTable.h"

/// Texts from the application's translators or, if they have none, in English.
class DefaultStringTable : public StringTable
{
public:
    std::string text(std::uint32_t number) const override;
    std::string translation(const std::string& key) const override;

    /// All numbers that have an English text, in ascending order.
    static std::vector<std::uint32_t> numbers();
    /// The English text; empty if there is none.
    static std::string english(std::uint32_t number);
};
