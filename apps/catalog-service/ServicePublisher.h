#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

/// Writes the folder that a catalog service on nginx serves: immutable blobs named by their SHA-1, and maps
/// from names to blobs. Blobs are written first and the maps last, each by one rename, so that a reader of
/// the folder sees the old or the new publication and never a name without its content.
///
/// Content that would harm clients is refused with a reason; the former publication under its name stays. One
/// object serves one publication; it belongs to one thread.
class ServicePublisher
{
public:
    struct Refusal
    {
        std::string name;
        std::string why;
    };

    /// @param source a content folder: "content/", and "manufacturers/" where there are any
    /// @param target the folder to write, made when missing: "blobs/", "catalog.d/" and "run/"
    ServicePublisher(std::string source, std::string target);

    /// @param reason filled when false: the source cannot be read or the target cannot be written
    bool publish(std::string& reason);

    /// How many names of the source were published; refused ones that keep their former content do not count.
    std::size_t publishedCount() const { return mPublishedCount; }
    /// In the order of the names, each with one reason.
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
