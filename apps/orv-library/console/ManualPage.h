#pragma once

#include <string>

/// The source of a manual page as plain text, for where no page is installed. It knows what our pages use:
/// headings, paragraphs, indented paragraphs, list items, literal blocks, marked words.
class ManualPage
{
public:
    explicit ManualPage(const std::string& source) : mSource(source) {}

    /// The page for a terminal of 80 columns.
    std::string text() const;

private:
    std::string mSource;
};
