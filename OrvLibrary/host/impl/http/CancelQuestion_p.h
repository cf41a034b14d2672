#pragma once

#include "OrvLibrary/host/Curl.h"

/// The function that tells whether the calling thread's request has been cancelled. Every loop that waits for
/// the network calls it.
namespace CancelQuestion {

/// The calling thread's function; null if it has none.
inline thread_local Curl::CancelQuestion ofThread = nullptr;

/// @throws whatever the function throws
inline bool isCancelled()
{
    return ofThread && ofThread();
}

} // namespace CancelQuestion
