#pragma once

#include "OrvLibrary/host/Curl.h"

/// The function that tells whether the calling thread's request has been cancelled. Each thread has its own.
/// Every loop that waits for the network calls it.
namespace CancelQuestion {

/// @return the former function; null if there was none
Curl::CancelQuestion set(Curl::CancelQuestion question);
/// False if the thread has no such function.
/// @throws whatever the function throws
bool isCancelled();

} // namespace CancelQuestion
