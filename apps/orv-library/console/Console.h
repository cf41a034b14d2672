#pragma once

#include <string>

#include <QJsonObject>

/// The program's output. With --json, standard output has exactly one document and everything else goes to
/// standard error. Without it, standard output has the result as text. Used only by the main thread.
class Console
{
public:
    explicit Console(bool json);

    /// Prints the result of the command; call it once. Prints the document with --json, otherwise the text.
    /// @param text complete lines; if empty, nothing is printed
    void result(const QJsonObject& document, const std::string& text);
    /// Sets what is printed if the command fails or is interrupted: the work done so far.
    /// @param text whole lines for people, without --json; not printed after an interrupt
    void resultSoFar(const QJsonObject& document, const std::string& text = {});
    /// Reports a failure: one line on standard error. With --json it also prints the document set so far,
    /// with the reason as "error", so a script always gets a document. After a result, no second document is
    /// printed.
    void failure(const std::string& reason);
    /// Prints a line beside the result, for people: to standard output or, with --json, to standard error.
    void note(const std::string& line);
    /// Prints a line to standard error, after the program's name.
    static void complain(const std::string& line);

    /// Whether everything printed so far was written.
    static bool flush();

private:
    bool mJson;
    bool mHasResult = false;
    QJsonObject mSoFar;
    std::string mTextSoFar;
};

/// A text for a document. Bytes that are not UTF-8 become replacement characters.
QString jsonText(const std::string& utf8);
