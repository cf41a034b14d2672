#pragma once

#include <cstdint>
#include <string>

#include "OrvLibrary/OrvLibraryExport.h"

/// The host's translated texts, behind `StringUtils::loadString`, `StringUtils::loadQString` and `xl8`. May
/// be called from any thread.
///
/// The library carries its translations as resources; a host loads the one of the user's language before it
/// uses the library, and may add translators of its own with texts for the same ids:
///
///     QTranslator translator;
///     if (translator.load(QLocale(), "orvlibrary", "_", ":/orvlibrary/translations"))
///         QCoreApplication::installTranslator(&translator);
class ORVLIBRARY_EXPORT StringTable
{
public:
    StringTable();
    virtual ~StringTable();
    StringTable(const StringTable&) = delete;
    StringTable& operator=(const StringTable&) = delete;

    /// The text of a string number, UTF-8; empty when there is none.
    virtual std::string text(std::uint32_t number) const = 0;
    /// The translation of a fixed key, UTF-8; the key itself when there is none.
    virtual std::string translation(const std::string& key) const = 0;

    /// The installed table, or the default: the texts of the application's translators under the ids
    /// "orv-2749" and so on (for a fixed key, the key itself), else the English ones that are compiled in.
    static StringTable& get();
    /// Makes `table` the one that `get` returns; null for the default. The pointer is not owned.
    /// @return the former one, null when it was the default
    static StringTable* install(StringTable* table);
};
