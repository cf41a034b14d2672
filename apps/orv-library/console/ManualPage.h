#pragma once

#include <string>

/// Converts the source of a manual page to plain text, if no page is installed. It knows the marks that our
/// pages use: headings, paragraphs, indented paragraphs, list items, literal blocks and marked words.
class ManualPage
{
public:
    explicit ManualPage(const std::string& source) : mSource(source) {}

    /// The page for a terminal with 80 columns.
    std::string text() const;

private:
    std::string mSource;
};
