#pragma once

#include <cstdint>
#include <map>
#include <string>

#include <QString>

/// The names of styles and makers, which catalogs only number. Interface thread.
namespace Names {

/// Empty for no style.
QString style(std::int32_t number);
/// A maker without a record is named by its number; empty for no maker.
QString maker(std::int32_t number);
/// All names as a search compares them.
std::map<std::int32_t, std::string> foldedStyles();
std::map<std::int32_t, std::string> foldedMakers();

} // namespace Names
