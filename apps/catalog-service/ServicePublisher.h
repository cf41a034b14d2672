#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

/// Writes the folder for a catalog service on nginx: files named by their SHA-1, which never change
/// ("blobs"), and maps from names to them. The blobs are written first and the maps last, each with one
/// rename. A reader thus sees the old or the new publication, and never a name without its content.
///
/// Content that would harm clients is refused with a reason; an earlier publication with its name stays. One
/// object serves one publication and belongs to one thread.
class ServicePublisher
{
public:
    struct Refusal
    {
        std::string name;
        std::string why;
    };

    /// @param source a content folder with "content/" and perhaps "manufacturers/"
    /// @param target the folder to write, created if missing: "blobs/", "catalog.d/" and "run/"
    ServicePublisher(std::string source, std::string target);

    /// @param reason set on failure: the source cannot be read or the target cannot be written
    bool publish(std::string& reason);

    /// The number of published names. Refused names do not count, even if their earlier content stays.
    std::size_t publishedCount() const { return mPublishedCount; }
    /// In the order of the names, one reason each.
    const std::vector<Refusal>& refusals() const { return mRefusals; }

private:
    /// Name to SHA-1 in hexadecimal.
    using Map = std::map<std::string, std::string>;
    /// Name to the path of its file.
    using Files = std::map<std::string, std::string>;

    Files filesIn(const std::string& folder) const;
    void refuse(Files& files, const std::string& name, const std::string& why);
    void refuseNames(Files& files);
    void refuseLetterCaseTwins(Files& files);
    void refuseContents(Files& files);
    void refuseSmallChanges(Files& files, const Map& former);
    void prepareFolders() const;
    Map hashesOf(const Files& files) const;
    void writeBlobs(const Files& files, const Map& hashes) const;
    void keepFormer(Map& map, const Map& former) const;

    std::string mSource;
    std::string mTarget;
    Map mNames;
    Map mLogos;
    std::size_t mPublishedCount = 0;
    std::vector<Refusal> mRefusals;
};
