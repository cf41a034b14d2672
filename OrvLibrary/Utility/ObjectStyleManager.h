#pragma once

#include <map>
#include <string>

#include "OrvLibrary/OrvLibraryExport.h"

/// The names of object styles. The number of a style is also the number of its translated name.
///
/// The only instance lives from the first use until the process ends. The host may use it on one thread at a
/// time.
class ORVLIBRARY_EXPORT ObjectStyleManager
{
public:
    ObjectStyleManager(const ObjectStyleManager&) = delete;
    ObjectStyleManager& operator=(const ObjectStyleManager&) = delete;

    /// The only instance. It starts with the built-in styles 10000 to 10014.
    static ObjectStyleManager& getObjectStyleManager();

    /// Adds the built-in styles if no style is known. Otherwise does nothing.
    void loadObjectStyles();
    /// The name; empty for an unknown style. The reference is valid until the style is added again.
    const std::string& getStyleName(long number) const;
    /// Adds a style. If it is known, loads its name again.
    void addObjectStyle(long number);

private:
    ObjectStyleManager();
    ~ObjectStyleManager();

    std::map<long, std::string> mStyles;
};
