#pragma once

#include <string>
#include <vector>

/// Writes the sample content folder: core catalogs with their index, a referenced archive, bonus and
/// manufacturer archives with pictures, manufacturer records with logos. All of it is generated, the same
/// bytes every time.
class SampleContent
{
public:
    /// @param folder made when missing; files of the sample's names are replaced, others stay
    explicit SampleContent(std::string folder);

    /// @throws std::runtime_error with the file and the reason
    void write();
    /// The files that were written, relative to the folder.
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
