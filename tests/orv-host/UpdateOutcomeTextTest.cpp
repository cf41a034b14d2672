#include <gtest/gtest.h>

#include "OrvHost/update/UpdateOutcome.h"

using OrvHost::installedName;
using OrvHost::UpdateOutcome;

namespace {

/// An outcome with this number of failures, of "1.orvlib", "2.orvlib" and so on.
UpdateOutcome withFailures(int count)
{
    UpdateOutcome outcome;
    for (int number = 1; number <= count; ++number)
        outcome.failed.push_back({std::to_string(number) + ".orvlib", 503, "r" + std::to_string(number)});
    return outcome;
}

std::string reasonOf(const UpdateOutcome& outcome, const std::string& asked)
{
    OrvHost::CatalogReport catalog;
    catalog.asked = asked;
    return outcome.reasonOf(catalog);
}

} // namespace

TEST(UpdateOutcomeText, kindsHaveNames)
{
    UpdateOutcome outcome;
    std::string names;
    for (const auto kind :
         {UpdateOutcome::Kind::Updated, UpdateOutcome::Kind::Current, UpdateOutcome::Kind::Incomplete,
          UpdateOutcome::Kind::Failed, UpdateOutcome::Kind::Cancelled, UpdateOutcome::Kind::Waiting}) {
        outcome.kind = kind;
        names += std::string(" ") + outcome.name();
    }
    EXPECT_EQ(names, " updated current incomplete failed cancelled waiting");
}

TEST(UpdateOutcomeText, fiveFailuresAreNamedAndTheOthersCounted)
{
    EXPECT_EQ(withFailures(0).failedText(), "");
    EXPECT_EQ(withFailures(1).failedText(), "1.orvlib: r1");
    const std::string five = "1.orvlib: r1; 2.orvlib: r2; 3.orvlib: r3; 4.orvlib: r4; 5.orvlib: r5";
    EXPECT_EQ(withFailures(5).failedText(), five);
    EXPECT_EQ(withFailures(7).failedText(), five + "; and 2 more");
    UpdateOutcome index;
    index.failed.push_back({std::nullopt, std::nullopt, "no answer"});
    EXPECT_EQ(index.failedText(), "the content index: no answer");
}

TEST(UpdateOutcomeText, catalogHasTheReasonOfItsFailure)
{
    UpdateOutcome outcome = withFailures(2);
    outcome.failed.insert(outcome.failed.begin(), {std::nullopt, 500, "of the index"});
    outcome.failed.push_back({"3.orvlibz", 503, "r3"});
    EXPECT_EQ(reasonOf(outcome, "2.orvlib"), "r2");
    EXPECT_EQ(reasonOf(outcome, "2.orvlibz"), "r2");
    EXPECT_EQ(reasonOf(outcome, "3.orvlibz"), "r3");
    EXPECT_EQ(reasonOf(outcome, "4.orvlib"), "");
}

TEST(UpdateOutcomeText, packedCatalogIsInstalledUnderItsOwnExtension)
{
    EXPECT_EQ(installedName("Garden.orvlibz"), "Garden.orvlib");
    EXPECT_EQ(installedName("Garden.orvlib"), "Garden.orvlib");
    EXPECT_EQ(installedName("a.orvlibz"), "a.orvlib");
    EXPECT_EQ(installedName(".orvlibz"), ".orvlibz");
    EXPECT_EQ(installedName("z"), "z");
}
