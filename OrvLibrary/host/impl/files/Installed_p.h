#pragma once

#include <atomic>

namespace host {

/// A default service that lives until the process ends. It is never destroyed, since a thread may still ask
/// for it while the process ends.
template <class Service, class Default>
Service& immortal()
{
    static Default& sDefault = *new Default;
    return sDefault;
}

/// The place of one installable service: what the host installed, else the default. For example:
///
///     host::Installed<PathUtils> gInstalled(host::immortal<PathUtils, DefaultPathUtils>);
///
/// An object of this class stands at namespace level. It needs no code to be made or destroyed, so it can be
/// asked at any moment of the process, from any thread.
template <class Service>
class Installed
{
public:
    /// @param fallback gives the default service, which must live until the process ends
    constexpr explicit Installed(Service& (*fallback)()) : mFallback(fallback) {}

    Service& get() const
    {
        Service* const service = mService;
        return service ? *service : mFallback();
    }
    /// Makes `service` the one that `get` returns; null for the default. The pointer is not owned.
    /// @return the former one, null when it was the default
    Service* install(Service* service) { return mService.exchange(service); }

private:
    std::atomic<Service*> mService{nullptr};
    Service& (*mFallback)();
};

} // namespace host
