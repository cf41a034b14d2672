#pragma once

#include <map>
#include <string>

#include "OrvLibrary/OrvLibraryExport.h"

/// The names of object styles. A style's number is also the number of the translated text that names it.
///
/// One instance lives from the first use to the end of the process; the host uses it from one thread at a
/// time.
class ORVLIBRARY_EXPORT ObjectStyleManager
{
public:
    ObjectStyleManager(const ObjectStyleManager&) = delete;
    ObjectStyleManager& operator=(const ObjectStyleManager&) = delete;

    /// The one instance, which knows the built-in styles 10000 to 10014.
    static ObjectStyleManager& getObjectStyleManager();

    /// Fills in the built-in styles when no style is known; else does nothing.
    void loadObjectStyles();
    /// The name; empty for an unknown style. The reference is valid until the style is added again.
    const std::string& getStyleName(long number) const;
    /// Adds a style, or loads its name again.
    void addObjectStyle(long number);

private:
    ObjectStyleManager();
    ~ObjectStyleManager();

    std::map<long, std::string> mStyles;
};
