#pragma once

#include <chrono>

#include "OrvHost/OrvHostExport.h"

/// Whether the network connection of the machine is paid by the amount of data. Functions may be called from
/// any thread.
namespace OrvHost::MeteredConnection {

/// How long each of the two answers that are needed is waited for.
constexpr std::chrono::milliseconds kPatience{500};

/// Asks NetworkManager, on the system bus, whether the connection is paid by the amount. Yes where it says or
/// guesses so; no where it says or guesses otherwise or does not know, and where there is no bus, no
/// NetworkManager or no answer in time. The bus is the one that `DBUS_SYSTEM_BUS_ADDRESS` names, or else the
/// usual one.
ORVHOST_EXPORT bool isMetered(std::chrono::milliseconds patience = kPatience);

} // namespace OrvHost::MeteredConnection
