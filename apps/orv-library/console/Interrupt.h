#pragma once

#include <string>

/// Interrupt and terminate signals as a question and as an event. One object lives at a time; the former
/// signal actions come back at its end.
class Interrupt
{
public:
    /// From here on a signal that no object takes over ends the program at once with status 130. A signal
    /// that the program was started to ignore stays ignored.
    static void endsProgram();
    /// Sets the text for standard output should a signal end the program; empty for none. Called by
    /// the main thread.
    static void setLastWords(const std::string& text);

    /// Takes over SIGINT and SIGTERM. A second signal while the first is being handled ends the program the
    /// hard way.
    Interrupt();
    ~Interrupt();
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    /// Whether a signal came since construction. May be called from any thread.
    static bool requested();
    /// A descriptor that becomes readable when a signal comes; for an event loop's notifier.
    int descriptor() const;
};
