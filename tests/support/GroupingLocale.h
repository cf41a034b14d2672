#pragma once

#include <locale>
#include <string>

namespace test {

/// Formats numbers as in German: "1.234.567,5".
class GermanNumbers : public std::numpunct<char>
{
protected:
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

/// The classic locale with German numbers. It needs no locale of the system.
inline std::locale groupingLocale()
{
    return std::locale(std::locale::classic(), new GermanNumbers);
}

/// Makes `groupingLocale` the global locale until the destructor.
class ScopedGrouping
{
public:
    ScopedGrouping() : mFormer(std::locale::global(groupingLocale())) {}
    ~ScopedGrouping() { std::locale::global(mFormer); }
    ScopedGrouping(const ScopedGrouping&) = delete;
    ScopedGrouping& operator=(const ScopedGrouping&) = delete;

private:
    std::locale mFormer;
};

} // namespace test
