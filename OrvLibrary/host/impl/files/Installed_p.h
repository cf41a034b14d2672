#pragma once

#include <atomic>

namespace host {

/// A default service. It is never destroyed, because a thread may still use it when the process ends.
template <class Service, class Default>
Service& immortal()
{
    static Default& sDefault = *new Default;
    return sDefault;
}

/// Holds one installable service: the host's, or the default. Example:
///
///     host::Installed<PathUtils> gInstalled(host::immortal<PathUtils, DefaultPathUtils>);
///
/// Objects of this class are global variables. They are initialised at compile time, so they can be used at
/// any time, from any thread.
template <class Service>
class Installed
{
public:
    /// @param fallback returns the default service, which must live until the process ends
    constexpr explicit Installed(Service& (*fallback)()) : mFallback(fallback) {}

    Service& get() const
    {
        Service* const service = mService;
        return service ? *service : mFallback();
    }
    /// Makes `get` return `service`, or the default if null. The caller keeps ownership.
    /// @return the former service; null if it was the default
    Service* install(Service* service) { return mService.exchange(service); }

private:
    std::atomic<Service*> mService{nullptr};
    Service& (*mFallback)();
};

} // namespace host
