#pragma once

#include <stdexcept>
#include <string>

#include "OrvLibrary/OrvLibraryExport.h"

/// The host's null-pointer error: a pointer that must not be null was.
class ORVLIBRARY_EXPORT NullPointerError : public std::logic_error
{
public:
    NullPointerError(const std::string& pointerName, const char* file, int line);
    ~NullPointerError() override;
    NullPointerError(const NullPointerError&) noexcept;

    /// The name of the pointer, as given.
    const std::string& pointerName() const { return mPointerName; }

private:
    std::string mPointerName;
};

/// Raises the null-pointer error where a required pointer is null.
struct ORVLIBRARY_EXPORT NullPointerRaiser
{
    /// @throws NullPointerError always
    [[noreturn]] static void Throw(const char* name, const char* file, int line);
};

/// Told of a failed assertion; returns, so that the caller goes on as it documents.
using AssertHandler = void (*)(const char* file, int line, int code, const char* expression);

/// Reports a failed assertion to the installed handler and returns. May be called from any thread.
ORVLIBRARY_EXPORT void notifyAssert(const char* file, int line, int code, const char* expression);
/// Makes `handler` the one that is told; null for the default, which writes a warning to the logging category
/// "orv.library".
/// @return the former one, null when it was the default
ORVLIBRARY_EXPORT AssertHandler installAssertHandler(AssertHandler handler);
