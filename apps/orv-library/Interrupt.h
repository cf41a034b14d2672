#pragma once

/// Interrupt and terminate signals as a question and as an event. One object lives at a time; the former
/// signal actions come back at its end.
class Interrupt
{
public:
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
