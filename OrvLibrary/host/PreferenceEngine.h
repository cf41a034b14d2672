#pragma once

#include <memory>
#include <string>
#include <variant>

#include "OrvLibrary/OrvLibraryExport.h"
#include "OrvLibrary/host/fileString.h"

/// The numbers of the preferences that the library reads and writes.
namespace PrefId {
constexpr int kProgressDisplayType = 239;    ///< int: 1 caption only, 2 percentage, 3 count
constexpr int kLastCoreUpdateHadError = 254; ///< bool, written at the end of a core-only update
constexpr int kExcludeCoreContent = 273;     ///< bool: a full update leaves the core catalogs alone
} // namespace PrefId

/// The value of a preference. The type it holds is the preference's type.
using PrefValue = std::variant<bool, int, double, std::string>;

/// One preference: its description and its value.
struct Pref
{
    std::string description;
    PrefValue value;
};

/// Stores preferences.
class ORVLIBRARY_EXPORT PrefSet
{
public:
    PrefSet();
    virtual ~PrefSet();
    PrefSet(const PrefSet&) = delete;
    PrefSet& operator=(const PrefSet&) = delete;

    /// A copy of the preference. If it was never set, it has its declared default, or false if the number is
    /// unknown. May be called from any thread.
    virtual Pref getPref(int id) const = 0;
    /// Stores a value. Does not check its type; the caller does. May be called from any thread.
    virtual void setPref(int id, const PrefValue& value) = 0;
    /// Whether the number was declared or set.
    virtual bool hasPref(int id) const = 0;
};

/// The preferences of the process, with their types checked.
///
/// Reading a preference as another type than it has sends the warning 272032175 to the message system and
/// returns false or 0. Writing another type sends a warning, too, and changes nothing. An unknown number
/// reads as false or 0 without a warning; its first write determines its type.
class ORVLIBRARY_EXPORT PreferenceEngine
{
public:
    /// @param set stores the values; not owned
    explicit PreferenceEngine(PrefSet& set);
    virtual ~PreferenceEngine();
    PreferenceEngine(const PreferenceEngine&) = delete;
    PreferenceEngine& operator=(const PreferenceEngine&) = delete;

    /// For `bool`, `int`, `double` and `std::string`. May be called from any thread.
    template <class T>
    T getPrefAs(int id) const;
    template <class T>
    void setPrefAs(int id, const T& value);

    PrefSet& prefSet() const { return *mSet; }

    /// The installed store. The default is a `FilePrefSet` on "preferences.json" in
    /// `RootPathUtils::defaultRoot()`.
    static PreferenceEngine& getThePrefs();
    /// Makes `getThePrefs` return `engine`, or the default if null. The caller keeps ownership.
    /// @return the former one; null if it was the default
    static PreferenceEngine* install(PreferenceEngine* engine);

private:
    PrefSet* mSet;
};

/// Stores preferences in a JSON file, with one member for each number. The member is true or false, a text or
/// a number. A whole number is an `int`, except if the preference was declared as `double`; every other
/// number is a `double`.
///
/// The constructor reads the file; each change writes it completely and syncs it. Several processes may share
/// it: a change locks the file, reads it anew (so changes by others are seen) and then writes. If a change
/// cannot be written, it is logged in the category "orv.library", holds for this object and is tried again
/// with the next change. If the file is not a JSON object, all preferences have their defaults, and before it
/// is replaced it is copied to a file with ".bad" appended. Unknown members are kept.
class ORVLIBRARY_EXPORT FilePrefSet : public PrefSet
{
public:
    explicit FilePrefSet(const fileString& path);
    ~FilePrefSet() override;

    Pref getPref(int id) const override;
    void setPref(int id, const PrefValue& value) override;
    bool hasPref(int id) const override;

    /// Gives a number its description and default. A value in the file is kept.
    void declare(int id, const std::string& description, const PrefValue& defaultValue);
    /// Declares the preferences of `PrefId`, as the default store does.
    void declareLibraryPrefs();

private:
    class Private;
    std::unique_ptr<Private> mPrivate;
};
