#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "OrvHost/Settings.h"

class Curl;

/// The catalogs that a service offers for an empty library. A plain value.
struct ServiceOffer
{
    /// A bonus or manufacturer catalog that the service lists.
    struct Catalog
    {
        std::string name;       ///< as installed, such as "Garden Party.orvlib"
        std::int64_t bytes = 0; ///< to fetch; 0 when the service does not tell
    };

    /// The core catalogs, without the archives that come with them.
    int catalogs = 0;
    /// Of all that an update would fetch of the core.
    std::int64_t bytes = 0;
    std::vector<Catalog> bonus;
    std::vector<Catalog> manufacturer;
    /// Why the service cannot be used, as `OrvHost` words it; empty when it can.
    std::string problem;

    /// Asks a service, as an update would ask it, once. Waits for the network; runs on any thread.
    /// @param service makes the requests
    /// @param settings the address, and what the service is told of the product
    /// @param indexName of the core content; those of the others are called alike
    /// @param isCancelled asked at least every 100 ms; the result then means nothing
    static ServiceOffer ask(Curl& service, const OrvHost::Settings::Values& settings,
                            const std::string& indexName, const std::atomic<bool>& isCancelled);
    /// The name of a further list, next to that of the core content: "Orv_Bonus_Content_Index.txt".
    /// @param kind "Bonus" or "Manufacturer"
    static std::string listName(std::string indexName, const std::string& kind);
    /// The catalogs that a list names, as installed, in its order. Lines that name none are left out.
    static std::vector<std::string> namesIn(const std::string& list);
};
