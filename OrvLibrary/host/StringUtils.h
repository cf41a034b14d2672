#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <QString>
#include <boost/numeric/conversion/cast.hpp>

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/UnicodeString.h"

/// Functions for texts. All may be called from any thread; none fails.
namespace StringUtils {

/// The translated text with this number, UTF-8; empty if there is none.
ORVLIBRARY_EXPORT std::string loadString(std::uint32_t number);
ORVLIBRARY_EXPORT QString loadQString(std::uint32_t number);
/// UTF-8 to Qt text and back.
ORVLIBRARY_EXPORT QString toQString(const std::string& utf8);
ORVLIBRARY_EXPORT std::string toStdString(const QString& text);
/// 8-bit Windows-1252; a character that the code page lacks becomes "?".
ORVLIBRARY_EXPORT std::string toWin1252(const marl::unicode::String& text);
/// The text without all bytes that are in `characters`.
ORVLIBRARY_EXPORT std::string removeAllOf(const std::string& text, const std::string& characters);
/// Compares two texts in the order of the browser: in the user's language, with numbers by value, and without
/// regard to letter case if `ignoreCase` is true. In the C locale it uses English.
/// @return negative, 0 or positive
ORVLIBRARY_EXPORT int compareStrings(const std::string& left, const std::string& right, bool ignoreCase);

} // namespace StringUtils

/// The translation of a fixed key, UTF-8; the key itself if there is none.
ORVLIBRARY_EXPORT std::string xl8(const std::string& key);

/// Splits `text` at `separator` and replaces `pieces`. Drops empty pieces at both ends and keeps those in
/// between.
ORVLIBRARY_EXPORT void tokenizeString(const std::string& text, char separator,
                                      std::vector<std::string>& pieces);

/// A number with the thousands separators of the user's locale (English in the C locale), UTF-8. Has at most
/// `precision` significant digits, but the whole part is always complete. The fraction has no zeros at its
/// end.
ORVLIBRARY_EXPORT std::string formatWithThousandsSeparatorPrecision(double value, int precision);

/// The nearest integer; halves are rounded away from zero. Values beyond the range give its
/// nearest bound, and NaN gives 0.
ORVLIBRARY_EXPORT std::int64_t iRoundoff(double value);

/// Converts a number; throws `boost::numeric::bad_numeric_cast` if the value does not fit.
using boost::numeric_cast;
