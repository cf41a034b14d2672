#include "OrvLibrary/host/NullPointerRaiser.h"

#include <atomic>

#include "OrvLibrary/host/impl/services/Logging_p.h"

namespace {

void logAssert(const char* file, int line, int code, const char* expression)
{
    qCWarning(orvLibraryLog, "Assertion failed: %s (code %d, %s:%d)", expression, code, file, line);
}

std::atomic<AssertHandler> installedHandler{nullptr};

std::string describe(const std::string& pointerName, const char* file, int line)
{
    return "Null pointer: " + pointerName + " (" + (file ? file : "") + ":" + std::to_string(line) + ")";
}

} // namespace

NullPointerError::NullPointerError(const std::string& pointerName, const char* file, int line)
    : std::logic_error(describe(pointerName, file, line)), mPointerName(pointerName)
{
}

NullPointerError::~NullPointerError() = default;
NullPointerError::NullPointerError(const NullPointerError&) noexcept = default;

void NullPointerRaiser::Throw(const char* name, const char* file, int line)
{
    throw NullPointerError(name ? name : "", file, line);
}

void notifyAssert(const char* file, int line, int code, const char* expression)
{
    const AssertHandler handler = installedHandler.load();
    (handler ? handler : logAssert)(file, line, code, expression);
}

AssertHandler installAssertHandler(AssertHandler handler)
{
    return installedHandler.exchange(handler);
}
