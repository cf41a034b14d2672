// A host with its own folders, texts and messages. It installs its services before it uses the library and
// removes them after the last call.
#include <iostream>

#include <QCoreApplication>

#include "OrvLibrary/Utility/ObjectStyleManager.h"
#include "OrvLibrary/host/MessagingSystem.h"
#include "OrvLibrary/host/PathUtils.h"
#include "OrvLibrary/host/StringTable.h"

namespace {

/// The host's own texts. Texts that it lacks come from the library.
class Texts : public StringTable
{
public:
    std::string text(std::uint32_t number) const override
    {
        return number == 10000 ? "Shaker" : mLibraryTexts.text(number);
    }
    std::string translation(const std::string& key) const override { return mLibraryTexts.translation(key); }

private:
    StringTable& mLibraryTexts = StringTable::get(); // read while the default is still installed
};

class Messages : public error::MessagingSystem
{
public:
    void notify(const char*, int, const error::Trait&, int number, const marl::unicode::String& text1,
                const marl::unicode::String& text2, const marl::unicode::String& text3) override
    {
        std::cerr << messageText(number, text1, text2, text3) << std::endl;
    }
};

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication qt(argc, argv);

    RootPathUtils folders(RootPathUtils::defaultRoot());
    Texts texts;
    Messages messages;
    PathUtils::install(&folders);
    StringTable::install(&texts);
    error::MessagingSystem::install(&messages);

    std::cout << "Style 10000 is called " << ObjectStyleManager::getObjectStyleManager().getStyleName(10000)
              << ", style 10001 " << ObjectStyleManager::getObjectStyleManager().getStyleName(10001)
              << std::endl;

    error::MessagingSystem::install(nullptr);
    StringTable::install(nullptr);
    PathUtils::install(nullptr);
}
