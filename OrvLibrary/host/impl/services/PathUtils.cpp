#include "OrvLibrary/host/PathUtils.h"

#include "OrvLibrary/host/impl/files/Installed_p.h"

namespace {

/// The folders of the default root. Each call reads the environment anew.
class DefaultPathUtils : public PathUtils
{
public:
    fileString getUserLibraryDatabasePath() const override { return root().getUserLibraryDatabasePath(); }
    fileString getCoreLibraryDatabasePath() const override { return root().getCoreLibraryDatabasePath(); }
    fileString getBonusLibraryDatabasePath() const override { return root().getBonusLibraryDatabasePath(); }
    fileString getManufacturerLibraryPath() const override { return root().getManufacturerLibraryPath(); }
    fileString getManufacturerDataPath() const override { return root().getManufacturerDataPath(); }
    fileString getProprietaryLibraryReferencedFilesPath() const override
    {
        return root().getProprietaryLibraryReferencedFilesPath();
    }
    fileString getUserTexturePath() const override { return root().getUserTexturePath(); }
    fileString getTempPath() const override { return root().getTempPath(); }

private:
    static RootPathUtils root() { return RootPathUtils(RootPathUtils::defaultRoot()); }
};

host::Installed<PathUtils> gInstalled(host::immortal<PathUtils, DefaultPathUtils>);

} // namespace

PathUtils::PathUtils() = default;
PathUtils::~PathUtils() = default;

PathUtils& PathUtils::getObject()
{
    return gInstalled.get();
}

PathUtils* PathUtils::install(PathUtils* service)
{
    return gInstalled.install(service);
}
