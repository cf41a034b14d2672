#include "OrvLibrary/host/Application.h"

#include <gtest/gtest.h>

namespace {

class NamedApplication : public Application
{
public:
    std::string name() const override { return "Name"; }
    fileString contentIndexName() const override { return fileString("Name_Core_Content_Index.txt"); }
};

TEST(Application, isTheInstalledOneOrNull)
{
    NamedApplication application;
    Application* const former = Application::install(&application);
    EXPECT_EQ(gApp.load(), &application);
    EXPECT_EQ(gApp.load()->name(), "Name");
    EXPECT_EQ(Application::install(nullptr), &application);
    EXPECT_EQ(gApp.load(), nullptr);
    EXPECT_EQ(Application::install(former), nullptr);
}

} // namespace
