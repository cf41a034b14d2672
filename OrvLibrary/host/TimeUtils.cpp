#include "OrvLibrary/host/TimeUtils.h"

#include <exception>

#include <boost/date_time/posix_time/posix_time.hpp>

namespace {

/// The value of two digits; 100 when they are none.
int twoDigits(const std::string& text, std::size_t at)
{
    const auto isDigit = [&](std::size_t i) { return i < text.size() && text[i] >= '0' && text[i] <= '9'; };
    return isDigit(at) && isDigit(at + 1) ? (text[at] - '0') * 10 + (text[at + 1] - '0') : 100;
}

/// Whether the text has the form "YYYYMMDDTHHMM[SS[.F]]". The parser of the date library would take hours
/// beyond the day, signs, and anything at the end.
bool hasFormOfTime(const std::string& text)
{
    constexpr std::size_t kTime = 9;
    if (text.size() < kTime + 4 || text[kTime - 1] != 'T' ||
        text.find_first_not_of("0123456789") != kTime - 1)
        return false;
    if (twoDigits(text, kTime) > 23 || twoDigits(text, kTime + 2) > 59)
        return false;
    if (text.size() == kTime + 4)
        return true;
    if (twoDigits(text, kTime + 4) > 59)
        return false;
    constexpr std::size_t kFraction = kTime + 6;
    if (text.size() == kFraction)
        return true;
    return (text[kFraction] == '.' || text[kFraction] == ',') && text.size() > kFraction + 1 &&
           text.find_first_not_of("0123456789", kFraction + 1) == std::string::npos;
}

bool isInfinity(const std::string& text)
{
    return text == "+infinity" || text == "-infinity";
}

} // namespace

namespace Library {

using boost::posix_time::ptime;

ptime getTimeNow()
{
    return boost::posix_time::microsec_clock::universal_time();
}

std::string toString(const ptime& time)
{
    return boost::posix_time::to_iso_string(time);
}

ptime fromString(const std::string& text)
{
    const ptime none(boost::date_time::not_a_date_time);
    if (!hasFormOfTime(text) && !isInfinity(text))
        return none;
    try {
        return boost::posix_time::from_iso_string(text);
    } catch (const std::exception&) {
        return none;
    }
}

std::string getTimeNowString()
{
    const ptime now = boost::posix_time::second_clock::universal_time();
    return boost::gregorian::to_iso_extended_string(now.date()) + " " +
           boost::posix_time::to_simple_string(now.time_of_day());
}

} // namespace Library
