#include "tests/host/http/TransferLibrary.h"

#include <curl/curl.h>
#include <dlfcn.h>

namespace {

using Call = test::TransferLibraryFault::Call;

/// The call that fails on this thread, and counts of the calls so far.
struct Plan
{
    Call call = Call::NewHandle;
    std::size_t failing = 0;
    std::size_t count = 0;
    int handles = 0;
    std::string certificate;
};

thread_local Plan tPlan;

bool fails(Call call)
{
    return tPlan.failing > 0 && tPlan.call == call && ++tPlan.count == tPlan.failing;
}

/// libcurl's own function.
template <class Function>
Function* next(Function*, const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

// These definitions take precedence over those of libcurl.
extern "C" {

CURL* curl_easy_init()
{
    static auto* const own = next(&curl_easy_init, "curl_easy_init");
    CURL* const handle = fails(Call::NewHandle) ? nullptr : own();
    tPlan.handles += handle ? 1 : 0;
    return handle;
}

void curl_easy_cleanup(CURL* handle)
{
    static auto* const own = next(&curl_easy_cleanup, "curl_easy_cleanup");
    tPlan.handles -= handle ? 1 : 0;
    own(handle);
}

curl_slist* curl_slist_append(curl_slist* list, const char* line)
{
    static auto* const own = next(&curl_slist_append, "curl_slist_append");
    return fails(Call::AddHeaderLine) ? nullptr : own(list, line);
}

CURLMcode curl_multi_add_handle(CURLM* multi, CURL* handle)
{
    static auto* const own = next(&curl_multi_add_handle, "curl_multi_add_handle");
    if (!tPlan.certificate.empty())
        curl_easy_setopt(handle, CURLOPT_CAINFO, tPlan.certificate.c_str());
    return fails(Call::AddTransfer) ? CURLM_OUT_OF_MEMORY : own(multi, handle);
}

CURLMcode curl_multi_perform(CURLM* multi, int* running)
{
    static auto* const own = next(&curl_multi_perform, "curl_multi_perform");
    return fails(Call::MoveOn) ? CURLM_OUT_OF_MEMORY : own(multi, running);
}

} // extern "C"

namespace test {

TransferLibraryFault::TransferLibraryFault(Call call, std::size_t number)
{
    tPlan.call = call;
    tPlan.failing = number;
    tPlan.count = 0;
}

TransferLibraryFault::~TransferLibraryFault()
{
    tPlan.failing = 0;
}

bool TransferLibraryFault::hasFailed() const
{
    return tPlan.count >= tPlan.failing;
}

int TransferLibraryFault::handles()
{
    return tPlan.handles;
}

TrustedCertificate::TrustedCertificate(const std::string& path)
{
    tPlan.certificate = path;
}

TrustedCertificate::~TrustedCertificate()
{
    tPlan.certificate.clear();
}

} // namespace test
