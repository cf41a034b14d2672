#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <QString>
#include <boost/numeric/conversion/cast.hpp>

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/UnicodeString.h"

/// Text services. All may be called from any thread, and none fails.
namespace StringUtils {

/// Translated text of a string number, UTF-8; empty when there is none.
ORVLIBRARY_EXPORT std::string loadString(std::uint32_t number);
ORVLIBRARY_EXPORT QString loadQString(std::uint32_t number);
/// UTF-8 to Qt text and back.
ORVLIBRARY_EXPORT QString toQString(const std::string& utf8);
ORVLIBRARY_EXPORT std::string toStdString(const QString& text);
/// 8-bit Windows-1252; a character that the code page lacks becomes "?".
ORVLIBRARY_EXPORT std::string toWin1252(const marl::unicode::String& text);
/// `text` with every byte that is in `characters` removed.
ORVLIBRARY_EXPORT std::string removeAllOf(const std::string& text, const std::string& characters);
/// The browser's name order: by a numeric collator of the user's language, without regard to letter case when
/// `ignoreCase` is set; English when the process runs in the C locale.
/// @return negative, 0 or positive
ORVLIBRARY_EXPORT int compareStrings(const std::string& left, const std::string& right, bool ignoreCase);

} // namespace StringUtils

/// Translated text of a fixed key, UTF-8; the key itself when there is none.
ORVLIBRARY_EXPORT std::string xl8(const std::string& key);

/// Splits `text` at `separator`. Empty pieces at both ends are dropped, those in between are kept; `pieces`
/// is replaced.
ORVLIBRARY_EXPORT void tokenizeString(const std::string& text, char separator,
                                      std::vector<std::string>& pieces);

/// Number text with the thousands separators of the user's locale (English in the C locale), UTF-8, at most
/// `precision` significant digits. The whole part always stands in full, zeros at the end of a fraction
/// never.
ORVLIBRARY_EXPORT std::string formatWithThousandsSeparatorPrecision(double value, int precision);

/// The nearest integer, halves away from zero; saturates, and gives 0 for what is no number.
ORVLIBRARY_EXPORT std::int64_t iRoundoff(double value);

/// Checked narrowing; throws `boost::numeric::bad_numeric_cast` when the value does not fit.
using boost::numeric_cast;
