#include "OrvLibrary/host/TimeUtils.h"

#include <algorithm>
#include <exception>
#include <new>
#include <string>

#include <boost/date_time/posix_time/posix_time.hpp>

namespace {

/// The value of two digits; 100 if they are not digits.
int twoDigits(const std::string& text, std::size_t at)
{
    const auto isDigit = [&](std::size_t i) { return i < text.size() && text[i] >= '0' && text[i] <= '9'; };
    return isDigit(at) && isDigit(at + 1) ? (text[at] - '0') * 10 + (text[at + 1] - '0') : 100;
}

constexpr std::size_t kTime = 9;             ///< the index of the hours
constexpr std::size_t kFraction = kTime + 6; ///< the index of the point

/// Whether the text has the form "YYYYMMDDTHHMM[SS[.F]]". The date library would also accept 25 hours, signs
/// and trailing characters.
bool hasFormOfTime(const std::string& text)
{
    if (text.size() < kTime + 4 || text[kTime - 1] != 'T' ||
        text.find_first_not_of("0123456789") != kTime - 1)
        return false;
    if (twoDigits(text, kTime) > 23 || twoDigits(text, kTime + 2) > 59)
        return false;
    if (text.size() == kTime + 4)
        return true;
    if (twoDigits(text, kTime + 4) > 59)
        return false;
    if (text.size() == kFraction)
        return true;
    return (text[kFraction] == '.' || text[kFraction] == ',') && text.size() > kFraction + 1 &&
           text.find_first_not_of("0123456789", kFraction + 1) == std::string::npos;
}

/// The fraction in microseconds. Further digits are ignored.
int fraction(const std::string& text)
{
    int value = 0;
    for (std::size_t at = kFraction + 1; at <= kFraction + 6; ++at)
        value = value * 10 + (at < text.size() ? text[at] - '0' : 0);
    return value;
}

/// Reads a text of this form. The date library can do it too, but took a quarter of the time needed to load a
/// manufacturer file.
/// @throws std::exception if there is no such day
boost::posix_time::ptime timeFrom(const std::string& text)
{
    const auto at = [&text](std::size_t place) { return twoDigits(text, place); };
    const boost::gregorian::date day(static_cast<unsigned short>(at(0) * 100 + at(2)),
                                     static_cast<unsigned short>(at(4)), static_cast<unsigned short>(at(6)));
    const int seconds = text.size() > kTime + 4 ? at(kTime + 4) : 0;
    return boost::posix_time::ptime(day, boost::posix_time::time_duration(at(kTime), at(kTime + 2), seconds) +
                                             boost::posix_time::microseconds(fraction(text)));
}

/// The number in decimal, filled with zeros to `width`, in every locale the same.
std::string digits(long long number, std::size_t width)
{
    const std::string text = std::to_string(number);
    return std::string(width - std::min(width, text.size()), '0') + text;
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
    if (time.is_special())
        return boost::posix_time::to_iso_string(time);
    // The date library would follow the process's locale and write "528,207" microseconds.
    const auto day = time.date().year_month_day();
    const boost::posix_time::time_duration clock = time.time_of_day();
    std::string text = digits(day.year, 4) + digits(day.month, 2) + digits(day.day, 2) + "T" +
                       digits(clock.hours(), 2) + digits(clock.minutes(), 2) + digits(clock.seconds(), 2);
    if (clock.fractional_seconds() != 0)
        text += "." + digits(clock.fractional_seconds(), 6);
    return text;
}

ptime fromString(const std::string& text)
{
    const ptime none(boost::date_time::not_a_date_time);
    if (!hasFormOfTime(text) && !isInfinity(text))
        return none;
    try {
        return isInfinity(text) ? boost::posix_time::from_iso_string(text) : timeFrom(text);
    } catch (const std::bad_alloc&) {
        throw; // no memory: the text may be right, and a record must not lose its time
    } catch (const std::exception&) {
        return none;
    }
}

std::string getTimeNowString()
{
    const ptime now = boost::posix_time::second_clock::universal_time();
    const auto day = now.date().year_month_day();
    const boost::posix_time::time_duration clock = now.time_of_day();
    return digits(day.year, 4) + "-" + digits(day.month, 2) + "-" + digits(day.day, 2) + " " +
           digits(clock.hours(), 2) + ":" + digits(clock.minutes(), 2) + ":" + digits(clock.seconds(), 2);
}

} // namespace Library
