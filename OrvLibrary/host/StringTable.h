#pragma once

#include <cstdint>
#include <string>

#include "OrvLibrary/OrvLibraryExport.h"

/// The numbers of the texts that the library asks for.
namespace TextId {
constexpr std::uint32_t kPercentage = 2749;               ///< format: the percentage
constexpr std::uint32_t kCount = 2750;                    ///< format: done, total
constexpr std::uint32_t kCountToolTip = 2752;             ///< what a click on the gauge does
constexpr std::uint32_t kCaptionOnlyToolTip = 2753;       ///< the same
constexpr std::uint32_t kPercentageToolTip = 2754;        ///< the same
constexpr std::uint32_t kUnpacking = 2893;                ///< format: the name of a file
constexpr std::uint32_t kDownloading = 8709;              ///< stands before a name
constexpr std::uint32_t kLookingForCatalogs = 8717;       ///< whole text
constexpr std::uint32_t kFound = 8723;                    ///< stands before a name
constexpr std::uint32_t kCheckingForUpdates = 8727;       ///< stands before a name
constexpr std::uint32_t kKilobytes = 8745;                ///< unit
constexpr std::uint32_t kNoFilter = 8930;                 ///< label
constexpr std::uint32_t kFirstObjectStyle = 10000;        ///< name of the first style
constexpr std::uint32_t kLastObjectStyle = 10014;         ///< name of the last style
constexpr std::uint32_t kDefaultManufacturerText = 10108; ///< stands for a missing contact
} // namespace TextId

/// The host's translated texts, used by `StringUtils::loadString`, `StringUtils::loadQString` and `xl8`. May
/// be called from any thread.
///
/// The library has its translations as resources. Before a host uses the library, it loads the translation
/// for the user's language. It may add its own translators with texts for the same ids:
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

    /// The text with this number, UTF-8; empty if there is none.
    virtual std::string text(std::uint32_t number) const = 0;
    /// The translation of a fixed key, UTF-8; the key itself if there is none.
    virtual std::string translation(const std::string& key) const = 0;

    /// The installed table. The default returns the texts of the application's translators with the ids
    /// "orv-2749" and so on (for a fixed key, the id is the key), or the English texts of the library.
    static StringTable& get();
    /// Makes `get` return `table`, or the default if null. The caller keeps ownership.
    /// @return the former one; null if it was the default
    static StringTable* install(StringTable* table);
};
