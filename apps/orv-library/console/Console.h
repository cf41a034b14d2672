#pragma once

#include <string>

#include <QJsonObject>

/// The program's output. With --json, standard output holds exactly one document and all else goes to
/// standard error; otherwise standard output holds what the user asked for. Used by the main thread only.
class Console
{
public:
    explicit Console(bool json);

    /// The result of the command, given once: the document with --json, otherwise the text.
    /// @param text whole lines; nothing is printed when it is empty
    void result(const QJsonObject& document, const std::string& text);
    /// Sets the document that is printed should the command fail: the work it has done so far.
    /// An interrupt that ends the program prints it, too.
    void resultSoFar(const QJsonObject& document);
    /// The command failed: one clear line on standard error and, with --json, the document of what it has
    /// done until then with the reason as "error", so that a script can always read one. No second document
    /// after a result.
    void failure(const std::string& reason);
    /// One line beside the result, for people: standard output, or standard error with --json.
    void note(const std::string& line);
    /// One clear line on standard error, after the program's name.
    static void complain(const std::string& line);

    /// Whether all that was printed so far arrived.
    static bool flush();

private:
    bool mJson;
    bool mHasResult = false;
    QJsonObject mSoFar;
};

/// A text for a document; bytes that are not UTF-8 become replacement characters.
QString jsonText(const std::string& utf8);
