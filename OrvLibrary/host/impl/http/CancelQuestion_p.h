#pragma once

#include "OrvLibrary/host/Curl.h"

/// The question, of the calling thread, whether its request is to end. Every loop that waits for the network
/// asks it.
namespace CancelQuestion {

/// @return the former question, null when there was none
Curl::CancelQuestion set(Curl::CancelQuestion question);
/// False when there is no question.
/// @throws what the question throws
bool isCancelled();

} // namespace CancelQuestion
