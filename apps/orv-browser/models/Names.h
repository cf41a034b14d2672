#pragma once

#include <cstdint>
#include <map>
#include <string>

#include <QString>

/// The names of styles and makers; catalogs only have their numbers. Interface thread.
namespace Names {

/// Empty if there is no style.
QString style(std::int32_t number);
/// If there is no record for a maker, its number. Empty if there is no maker.
QString maker(std::int32_t number);
/// All names, folded for searching.
std::map<std::int32_t, std::string> foldedStyles();
std::map<std::int32_t, std::string> foldedMakers();

} // namespace Names
