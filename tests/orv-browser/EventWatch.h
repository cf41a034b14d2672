#pragma once

#include <string>

namespace test {

/// Measures the longest event that the interface thread handles until the destructor. Time during which other
/// programs use the processor does not count. Events inside an event count with the outer event. Only one
/// object may exist at a time, and the application object must be a WatchedApplication.
class EventWatch
{
public:
    EventWatch();
    ~EventWatch();
    EventWatch(const EventWatch&) = delete;
    EventWatch& operator=(const EventWatch&) = delete;

    /// The duration of the longest event in milliseconds.
    double longest() const { return mLongest; }
    /// The name of the longest event.
    const std::string& longestName() const { return mLongestName; }

    void note(double milliseconds, const std::string& name);
    static EventWatch* current();
    /// How many milliseconds in total this thread was ready to run and waited for a processor.
    static double waitForProcessor();

private:
    double mLongest = 0;
    std::string mLongestName;
};

} // namespace test
