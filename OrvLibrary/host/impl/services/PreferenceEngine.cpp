#include "OrvLibrary/host/PreferenceEngine.h"

#include <map>
#include <type_traits>

#include "OrvLibrary/host/MessagingSystem.h"
#include "OrvLibrary/host/PathUtils.h"
#include "OrvLibrary/host/ThreadMutex.h"
#include "OrvLibrary/host/impl/files/Installed_p.h"

namespace {

template <class T>
const char* typeName()
{
    if constexpr (std::is_same_v<T, bool>)
        return "bool";
    else if constexpr (std::is_same_v<T, int>)
        return "int";
    else if constexpr (std::is_same_v<T, double>)
        return "double";
    else
        return "std::string";
}

std::string typeNameOf(const PrefValue& value)
{
    return std::visit([](const auto& held) { return typeName<std::decay_t<decltype(held)>>(); }, value);
}

void warnOfType(const char* operation, const Pref& pref, const char* expected)
{
    const std::string text = std::string(operation) + " pref isA failure: Expected preference '" +
                             pref.description + "' to be of type '" + expected +
                             "', but instead found it to be of type '" + typeNameOf(pref.value) + "'.";
    error::MessagingSystem::control().notify(__FILE__, __LINE__, error::WarningTrait(),
                                             error::Message::kPreferenceType, text, "", "");
}

/// The default preferences of one root folder.
struct RootPrefs
{
    explicit RootPrefs(const fileString& root) : set(root / fileString("preferences.json")), engine(set)
    {
        set.declareLibraryPrefs();
    }

    FilePrefSet set;
    PreferenceEngine engine;
};

/// The stores of former roots are kept, because callers may still use them. None is destroyed, because a
/// thread may still use it when the process ends.
PreferenceEngine& defaultPrefs()
{
    static auto& sMutex = *new ThreadMutex;
    static auto& sStores = *new std::map<fileString, RootPrefs>;
    const fileString root = RootPathUtils::defaultRoot();
    const ThreadLockGuard<ThreadMutex> lock(sMutex);
    return sStores.try_emplace(root, root).first->second.engine;
}

host::Installed<PreferenceEngine> gInstalled(defaultPrefs);

} // namespace

PrefSet::PrefSet() = default;
PrefSet::~PrefSet() = default;

PreferenceEngine::PreferenceEngine(PrefSet& set) : mSet(&set) {}

PreferenceEngine::~PreferenceEngine() = default;

template <class T>
T PreferenceEngine::getPrefAs(int id) const
{
    if (!mSet->hasPref(id))
        return T{};
    const Pref pref = mSet->getPref(id);
    if (const T* const value = std::get_if<T>(&pref.value))
        return *value;
    warnOfType("Get", pref, typeName<T>());
    return T{};
}

template <class T>
void PreferenceEngine::setPrefAs(int id, const T& value)
{
    if (mSet->hasPref(id)) {
        const Pref pref = mSet->getPref(id);
        if (!std::holds_alternative<T>(pref.value)) {
            warnOfType("Set", pref, typeName<T>());
            return;
        }
    }
    mSet->setPref(id, value);
}

template bool PreferenceEngine::getPrefAs<bool>(int) const;
template int PreferenceEngine::getPrefAs<int>(int) const;
template double PreferenceEngine::getPrefAs<double>(int) const;
template std::string PreferenceEngine::getPrefAs<std::string>(int) const;
template void PreferenceEngine::setPrefAs<bool>(int, const bool&);
template void PreferenceEngine::setPrefAs<int>(int, const int&);
template void PreferenceEngine::setPrefAs<double>(int, const double&);
template void PreferenceEngine::setPrefAs<std::string>(int, const std::string&);

PreferenceEngine& PreferenceEngine::getThePrefs()
{
    return gInstalled.get();
}

PreferenceEngine* PreferenceEngine::install(PreferenceEngine* engine)
{
    return gInstalled.install(engine);
}
