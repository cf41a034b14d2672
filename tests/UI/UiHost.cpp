#include "tests/UI/UiHost.h"

#include <QLocale>

namespace test {

UiHost::UiHost()
    : texts{{2749, "%1% percent"},
            {2750, "%1% of %2%"},
            {2752, "tip: count"},
            {2753, "tip: caption only"},
            {2754, "tip: percentage"}},
      mFormerTable(StringTable::install(this))
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    setDisplayType(1);
}

UiHost::~UiHost()
{
    QLocale::setDefault(QLocale::system());
    StringTable::install(mFormerTable);
}

std::string UiHost::text(std::uint32_t number) const
{
    const auto found = texts.find(number);
    return found == texts.end() ? std::string() : found->second;
}

std::string UiHost::translation(const std::string& key) const
{
    return "translated " + key;
}

std::vector<std::string> AssertionRecorder::expressions;
std::string AssertionRecorder::file;

AssertionRecorder::AssertionRecorder()
    : mFormer(installAssertHandler([](const char* sourceFile, int, int, const char* expression) {
          expressions.emplace_back(expression);
          file = sourceFile;
      }))
{
    expressions.clear();
    file.clear();
}

AssertionRecorder::~AssertionRecorder()
{
    installAssertHandler(mFormer);
}

} // namespace test
