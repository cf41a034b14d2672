#pragma once

#include <string>

namespace test {

/// Measures how long the interface thread is busy with one event, from construction to the end of the block;
/// without the time for which other programs keep it from the processor.
/// Events inside events count with the outer one. One object at a time; the test program's application object
/// must be a WatchedApplication.
class EventWatch
{
public:
    EventWatch();
    ~EventWatch();
    EventWatch(const EventWatch&) = delete;
    EventWatch& operator=(const EventWatch&) = delete;

    /// Milliseconds of the event that took longest.
    double longest() const { return mLongest; }
    /// What that event was.
    const std::string& longestName() const { return mLongestName; }

    void note(double milliseconds, const std::string& name);
    static EventWatch* current();
    /// For how many milliseconds, in all, this thread could have gone on and no processor was free.
    static double waitForProcessor();

private:
    double mLongest = 0;
    std::string mLongestName;
};

} // namespace test
