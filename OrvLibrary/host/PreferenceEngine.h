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

/// A preference's value; the alternative that is held is the preference's type.
using PrefValue = std::variant<bool, int, double, std::string>;

/// One preference: what it is called and what it holds.
struct Pref
{
    std::string description;
    PrefValue value;
};

/// The set of preferences of a store.
class ORVLIBRARY_EXPORT PrefSet
{
public:
    PrefSet();
    virtual ~PrefSet();
    PrefSet(const PrefSet&) = delete;
    PrefSet& operator=(const PrefSet&) = delete;

    /// A copy of the preference. One that was never set holds its declared default, or false when the number
    /// is unknown to the store. May be called from any thread.
    virtual Pref getPref(int id) const = 0;
    /// Stores a value and keeps it; the type is checked by the caller. May be called from any thread.
    virtual void setPref(int id, const PrefValue& value) = 0;
    /// Whether the store knows the number: declared or set before.
    virtual bool hasPref(int id) const = 0;
};

/// The process-wide typed preference store.
///
/// A read of a preference that holds another type sends the warning 272032175 through the message system and
/// returns false or 0; a write to one sends a warning too and changes nothing. A number unknown to the store
/// reads as false or 0 without a warning and takes the type of its first write.
class ORVLIBRARY_EXPORT PreferenceEngine
{
public:
    /// @param set where the values are kept; not owned
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

    /// The installed store, or the default: `FilePrefSet` on "preferences.json" in
    /// `RootPathUtils::defaultRoot()`.
    static PreferenceEngine& getThePrefs();
    /// Makes `engine` the one that `getThePrefs` returns; null for the default. The pointer is not owned.
    /// @return the former one, null when it was the default
    static PreferenceEngine* install(PreferenceEngine* engine);

private:
    PrefSet* mSet;
};

/// Preferences in a JSON file: one member per preference number, which holds a truth value, a text or a
/// number. A whole number is an `int`, unless the preference is declared as `double`; any other is a
/// `double`.
///
/// The file is read at construction and written at every change, the whole of it at once and synced. Several
/// processes may use it: a change is made under a lock on what the file holds at that moment, and brings in
/// what others changed. A change that cannot be written is logged in the category "orv.library", holds for
/// this object, and is tried again with the next. A file that is not a JSON object leaves the defaults, and
/// is copied aside with ".bad" appended before it is replaced. Members that are not understood are kept.
class ORVLIBRARY_EXPORT FilePrefSet : public PrefSet
{
public:
    explicit FilePrefSet(const fileString& path);
    ~FilePrefSet() override;

    Pref getPref(int id) const override;
    void setPref(int id, const PrefValue& value) override;
    bool hasPref(int id) const override;

    /// Gives a number its name and default; a value that the file holds stays.
    void declare(int id, const std::string& description, const PrefValue& defaultValue);
    /// Declares the preferences in `PrefId`, as the default store has them.
    void declareLibraryPrefs();

private:
    class Private;
    std::unique_ptr<Private> mPrivate;
};
