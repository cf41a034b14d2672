#include "apps/orv-library/console/ManualPage.h"

#include <algorithm>
#include <cctype>
#include <sstream>

namespace {

constexpr std::size_t kColumns = 79;
constexpr std::size_t kIndent = 7; ///< of the text in a section, and of each further level

bool isWordCharacter(char character)
{
    return std::isalnum(static_cast<unsigned char>(character)) != 0;
}

/// A line without its marks: "*bold*", "_underlined_" and the backslash of an escaped character.
std::string withoutMarks(const std::string& line)
{
    std::string plain;
    for (std::size_t at = 0; at < line.size(); ++at) {
        const char character = line[at];
        const bool insideWord =
            at > 0 && at + 1 < line.size() && isWordCharacter(line[at - 1]) && isWordCharacter(line[at + 1]);
        if (character == '\\' && at + 1 < line.size())
            plain += line[++at];
        else if (character != '*' && (character != '_' || insideWord))
            plain += character;
    }
    return plain;
}

/// Takes the page line by line and wraps each paragraph.
class Renderer
{
public:
    void add(const std::string& line)
    {
        const std::size_t level = std::min(line.find_first_not_of('\t'), line.size());
        const std::string content = line.substr(level);
        if (content.compare(0, 3, "```") == 0) {
            endParagraph();
            mIsLiteral = !mIsLiteral;
        } else if (mIsLiteral) {
            print(2 * kIndent, line);
        } else if (content.empty()) {
            endParagraph();
            print(0, {});
        } else if (content[0] == '#') {
            endParagraph();
            print(0, withoutMarks(content.substr(content.find_first_not_of("# "))));
        } else {
            addWords(kIndent * (level + 1), content);
        }
    }

    void endParagraph()
    {
        std::istringstream words(mWords);
        mWords.clear();
        std::string line;
        for (std::string word; words >> word;) {
            if (!line.empty() && mIndent + line.size() + 1 + word.size() > kColumns) {
                print(mIndent, line);
                line.clear();
            }
            line += (line.empty() ? "" : " ") + word;
        }
        if (!line.empty())
            print(mIndent, line);
    }

    const std::string& text() const { return mText; }

private:
    void addWords(std::size_t indent, const std::string& content)
    {
        if (indent != mIndent || content.compare(0, 2, "- ") == 0)
            endParagraph();
        mIndent = indent;
        mWords += withoutMarks(content) + " ";
    }

    void print(std::size_t indent, const std::string& line)
    {
        mText += (line.empty() ? std::string() : std::string(indent, ' ') + line) + "\n";
    }

    bool mIsLiteral = false;
    std::size_t mIndent = 0;
    std::string mWords; ///< of the current paragraph
    std::string mText;
};

} // namespace

std::string ManualPage::text() const
{
    Renderer renderer;
    std::istringstream lines(mSource);
    std::string line;
    std::getline(lines, line); // the page's name
    std::getline(lines, line); // a blank line
    while (std::getline(lines, line))
        renderer.add(line);
    renderer.endParagraph();
    return renderer.text();
}
