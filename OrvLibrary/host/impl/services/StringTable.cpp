#include "OrvLibrary/host/StringTable.h"

#include <atomic>

#include "OrvLibrary/host/impl/services/DefaultStringTable_p.h"

namespace {

std::atomic<StringTable*> gInstalled{nullptr};

} // namespace

StringTable::StringTable() = default;
StringTable::~StringTable() = default;

StringTable& StringTable::get()
{
    static DefaultStringTable sDefault;
    StringTable* const installed = gInstalled;
    return installed ? *installed : sDefault;
}

StringTable* StringTable::install(StringTable* table)
{
    return gInstalled.exchange(table);
}
