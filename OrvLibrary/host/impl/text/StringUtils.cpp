#include "OrvLibrary/host/StringUtils.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "OrvLibrary/host/StringTable.h"
#include "OrvLibrary/host/impl/text/UserLocale_p.h"
#include "OrvLibrary/host/impl/text/Windows1252_p.h"

namespace StringUtils {

std::string loadString(std::uint32_t number)
{
    return StringTable::get().text(number);
}

QString loadQString(std::uint32_t number)
{
    return toQString(loadString(number));
}

QString toQString(const std::string& utf8)
{
    return QString::fromStdString(utf8);
}

std::string toStdString(const QString& text)
{
    return text.toStdString();
}

std::string toWin1252(const marl::unicode::String& text)
{
    return textToWindows1252(toQString(text.toUTF8String()));
}

std::string removeAllOf(const std::string& text, const std::string& characters)
{
    std::string kept;
    kept.reserve(text.size());
    std::copy_if(text.begin(), text.end(), std::back_inserter(kept),
                 [&](char c) { return characters.find(c) == std::string::npos; });
    return kept;
}

int compareStrings(const std::string& left, const std::string& right, bool ignoreCase)
{
    return nameCollator(ignoreCase).compare(toQString(left), toQString(right));
}

} // namespace StringUtils

std::string xl8(const std::string& key)
{
    return StringTable::get().translation(key);
}

void tokenizeString(const std::string& text, char separator, std::vector<std::string>& pieces)
{
    std::vector<std::string> found;
    const std::size_t first = text.find_first_not_of(separator);
    if (first != std::string::npos) {
        const std::size_t end = text.find_last_not_of(separator) + 1;
        std::size_t start = first;
        for (std::size_t at = text.find(separator, start); at < end; at = text.find(separator, start)) {
            found.push_back(text.substr(start, at - start));
            start = at + 1;
        }
        found.push_back(text.substr(start, end - start));
    }
    pieces = std::move(found);
}

std::string formatWithThousandsSeparatorPrecision(double value, int precision)
{
    const double whole = std::floor(std::fabs(value));
    const int wholeDigits = whole < 1 ? 1 : 1 + static_cast<int>(std::log10(std::min(whole, 1e15)));
    const QLocale locale = userLocale();
    QString text = locale.toString(value, 'f', std::max(0, precision - wholeDigits));
    if (text.contains(locale.decimalPoint())) {
        while (text.endsWith(locale.zeroDigit()))
            text.chop(1);
        if (text.endsWith(locale.decimalPoint()))
            text.chop(1);
    }
    return StringUtils::toStdString(text);
}

std::int64_t iRoundoff(double value)
{
    constexpr double kLimit = 9223372036854775808.0; // 2^63, the first value that does not fit
    if (std::isnan(value))
        return 0;
    if (value >= kLimit)
        return std::numeric_limits<std::int64_t>::max();
    if (value < -kLimit)
        return std::numeric_limits<std::int64_t>::min();
    return std::llround(value);
}
