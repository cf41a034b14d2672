#pragma once

#include <string>

#include "apps/orv-library/Command.h"

/// Makes SIGINT and SIGTERM available as a question and as an event. Only one object may exist at a time. Its
/// destructor restores the former signal actions.
class Interrupt
{
public:
    /// From now on, a signal ends the program at once with status 130, unless an object of this class handles
    /// it. A signal that was ignored when the program started stays ignored.
    static void endsProgram();
    /// Sets another status for this. A command whose work is done sets that of its result, because a signal
    /// no longer changes anything.
    static void setEndStatus(ExitStatus status);
    /// Sets a text that is printed to standard output if a signal ends the program; empty for none. Called by
    /// the main thread.
    static void setLastWords(const std::string& text);

    /// Handles SIGINT and SIGTERM. A second signal ends the program at once.
    Interrupt();
    ~Interrupt();
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    /// Whether a signal has come since construction. May be called from any thread.
    static bool requested();
    /// A descriptor that becomes readable when a signal comes, for the notifier of an event loop.
    int descriptor() const;
};
