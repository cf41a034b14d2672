#include "OrvLibrary/host/impl/services/DefaultStringTable_p.h"

#include <algorithm>
#include <iterator>

#include <QCoreApplication>
#include <QString>

namespace {

struct Text
{
    std::uint32_t number;
    const char* english;
};

// In ascending order. Texts with %1% are formats; a name follows a text that ends with a blank.
constexpr Text kTexts[] = {
    {2749, "%1%%%"},
    {2750, "%1% of %2%"},
    {2752, "Progress is shown as a count. Click to show only the caption."},
    {2753, "Only the caption is shown. Click to show progress as a percentage."},
    {2754, "Progress is shown as a percentage. Click to show a count."},
    {2893, "Unpacking %1%"},
    {8709, "Downloading "},
    {8717, "Looking for library catalogs"},
    {8723, "Found "},
    {8727, "Checking for updates: "},
    {8745, "KB"},
    {8930, "No Filter"},
    {10000, "Traditional"},
    {10001, "Contemporary"},
    {10002, "Modern"},
    {10003, "Transitional"},
    {10004, "Farmhouse"},
    {10005, "Craftsman"},
    {10006, "Colonial"},
    {10007, "Victorian"},
    {10008, "Mediterranean"},
    {10009, "Tuscan"},
    {10010, "French Country"},
    {10011, "Mid-Century"},
    {10012, "Scandinavian"},
    {10013, "Industrial"},
    {10014, "Rustic"},
    {10108, "Please contact the manufacturer for details."},
    {272032175, "%1%"},
    {272032338,
     "This library contains material that a manufacturer supplied. Colors and textures on the screen "
     "may differ from the real product; ask the manufacturer before you order."},
    {272032391, "The file \"%1%\" cannot be written. It may be read-only or in use by another program."},
};

/// The translators' text for an id; null if they have none. A translator without a text returns the id.
QString translated(const std::string& id)
{
    const QString text = qtTrId(id.c_str());
    return text == QString::fromStdString(id) ? QString() : text;
}

} // namespace

std::string DefaultStringTable::text(std::uint32_t number) const
{
    const QString text = translated("orv-" + std::to_string(number));
    return text.isNull() ? english(number) : text.toStdString();
}

std::string DefaultStringTable::translation(const std::string& key) const
{
    const QString text = translated(key);
    return text.isNull() ? key : text.toStdString();
}

std::vector<std::uint32_t> DefaultStringTable::numbers()
{
    std::vector<std::uint32_t> numbers;
    std::transform(std::begin(kTexts), std::end(kTexts), std::back_inserter(numbers),
                   [](const Text& text) { return text.number; });
    return numbers;
}

std::string DefaultStringTable::english(std::uint32_t number)
{
    const auto* const found =
        std::lower_bound(std::begin(kTexts), std::end(kTexts), number,
                         [](const Text& text, std::uint32_t wanted) { return text.number < wanted; });
    return found != std::end(kTexts) && found->number == number ? found->english : "";
}
