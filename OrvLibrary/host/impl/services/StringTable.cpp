#include "OrvLibrary/host/StringTable.h"

#include "OrvLibrary/host/impl/files/Installed_p.h"
#include "OrvLibrary/host/impl/services/DefaultStringTable_p.h"

namespace {

host::Installed<StringTable> gInstalled(host::immortal<StringTable, DefaultStringTable>);

} // namespace

StringTable::StringTable() = default;
StringTable::~StringTable() = default;

StringTable& StringTable::get()
{
    return gInstalled.get();
}

StringTable* StringTable::install(StringTable* table)
{
    return gInstalled.install(table);
}
