#pragma once

#include <stdexcept>
#include <string>

#include "OrvLibrary/OrvLibraryExport.h"

/// The host's error for a pointer that is null although it must not be.
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

/// Throws the error for a required pointer that is null.
struct ORVLIBRARY_EXPORT NullPointerRaiser
{
    /// @throws NullPointerError always
    [[noreturn]] static void Throw(const char* name, const char* file, int line);
};

/// Called when an assertion failed. It returns, and the caller goes on as its documentation says.
using AssertHandler = void (*)(const char* file, int line, int code, const char* expression);

/// Calls the installed handler for a failed assertion. May be called from any thread.
ORVLIBRARY_EXPORT void notifyAssert(const char* file, int line, int code, const char* expression);
/// Installs the handler for failed assertions; null for the default, which writes a warning to the logging
/// category "orv.library".
/// @return the former handler; null if it was the default
ORVLIBRARY_EXPORT AssertHandler installAssertHandler(AssertHandler handler);
