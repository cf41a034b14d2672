#include <map>
#include <optional>

#include "OrvLibrary/host/PreferenceEngine.h"
#include "OrvLibrary/host/ThreadMutex.h"
#include "OrvLibrary/host/impl/services/Logging_p.h"
#include "OrvLibrary/host/impl/services/PrefFile_p.h"

/// The file's content as last read or written, and the preferences that this process declared.
class Q_DECL_HIDDEN FilePrefSet::Private
{
public:
    explicit Private(const fileString& path) : file(path), members(file.read()) {}

    std::optional<PrefValue> stored(int id) const
    {
        const auto changed = unsaved.find(id);
        const std::optional<PrefValue> value =
            changed == unsaved.end() ? PrefFile::value(members, id) : changed->second;
        const auto known = declared.find(id);
        const bool wantsReal = known != declared.end() && std::holds_alternative<double>(known->second.value);
        if (value && wantsReal && std::holds_alternative<int>(*value))
            return static_cast<double>(std::get<int>(*value)); // another program wrote "1" for a real number
        return value;
    }

    mutable ThreadMutex mutex;
    PrefFile file;
    QJsonObject members;
    std::map<int, Pref> declared;
    std::map<int, PrefValue> unsaved; ///< changes that could not be written; tried again with the next one
};

FilePrefSet::FilePrefSet(const fileString& path) : mPrivate(std::make_unique<Private>(path)) {}

FilePrefSet::~FilePrefSet() = default;

Pref FilePrefSet::getPref(int id) const
{
    const ThreadLockGuard<ThreadMutex> lock(mPrivate->mutex);
    const auto known = mPrivate->declared.find(id);
    Pref pref = known == mPrivate->declared.end() ? Pref{std::to_string(id), false} : known->second;
    if (const std::optional<PrefValue> value = mPrivate->stored(id))
        pref.value = *value;
    return pref;
}

void FilePrefSet::setPref(int id, const PrefValue& value)
{
    const ThreadLockGuard<ThreadMutex> lock(mPrivate->mutex);
    mPrivate->unsaved[id] = value;
    std::string reason;
    if (const auto members = mPrivate->file.update(mPrivate->unsaved, reason)) {
        mPrivate->members = *members;
        mPrivate->unsaved.clear();
    } else {
        qCWarning(orvLibraryLog, "Unable to write preferences: %s", reason.c_str());
    }
}

bool FilePrefSet::hasPref(int id) const
{
    const ThreadLockGuard<ThreadMutex> lock(mPrivate->mutex);
    return mPrivate->declared.count(id) != 0 || mPrivate->stored(id);
}

void FilePrefSet::declare(int id, const std::string& description, const PrefValue& defaultValue)
{
    const ThreadLockGuard<ThreadMutex> lock(mPrivate->mutex);
    mPrivate->declared[id] = Pref{description, defaultValue};
}

void FilePrefSet::declareLibraryPrefs()
{
    constexpr int kPercentage = 2;
    declare(PrefId::kProgressDisplayType, "Library progress display type", kPercentage);
    declare(PrefId::kLastCoreUpdateHadError, "Last core content update had an error", false);
    declare(PrefId::kExcludeCoreContent, "Leave core content out of full updates", false);
}
