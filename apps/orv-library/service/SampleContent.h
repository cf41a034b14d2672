#pragma once

#include <string>
#include <vector>

/// Writes the sample content folder: core catalogs with their index, an archive of referenced files, bonus
/// and manufacturer archives with pictures, and manufacturer records with logos. Everything is generated and
/// always has the same bytes.
class SampleContent
{
public:
    /// @param folder created if missing; files with the names of the sample are replaced, others stay
    explicit SampleContent(std::string folder);

    /// @throws std::runtime_error with the file and the reason
    void write();
    /// The written files, relative to the folder.
    const std::vector<std::string>& files() const { return mFiles; }

private:
    std::string place(const std::string& name);
    void writeText(const std::string& name, const std::string& text);
    void writeCoreCatalogs();
    void writeReferencedArchive();
    void writeArchives();
    void writeManufacturers();

    std::string mFolder;
    std::vector<std::string> mFiles;
};
