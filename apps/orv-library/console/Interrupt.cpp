#include "apps/orv-library/console/Interrupt.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <list>
#include <stdexcept>

#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int kSignals[] = {SIGINT, SIGTERM};

std::atomic<bool> requestedFlag{false};
int wakePipe[2] = {-1, -1};
struct sigaction formerActions[2];

/// Does only what is allowed in a signal handler: sets the flag and writes a byte to the pipe.
void noteSignal(int)
{
    const int savedError = errno;
    requestedFlag.store(true);
    const char byte = 1;
    // If the pipe is full, the reader wakes up anyway.
    [[maybe_unused]] const ssize_t written = write(wakePipe[1], &byte, 1);
    errno = savedError;
}

/// A signal handler reads it at any time, so no text it has pointed to is ever freed.
std::atomic<const std::string*> lastWords{nullptr};

std::atomic<ExitStatus> endStatus{ExitStatus::Interrupted};

[[noreturn]] void endProgram(int)
{
    if (const std::string* words = lastWords.load()) {
        [[maybe_unused]] const ssize_t written = write(STDOUT_FILENO, words->data(), words->size());
    }
    _exit(static_cast<int>(endStatus.load()));
}

} // namespace

void Interrupt::endsProgram()
{
    struct sigaction action
    {
    };
    action.sa_handler = endProgram;
    for (const int signal : kSignals) {
        struct sigaction former;
        if (sigaction(signal, nullptr, &former) == 0 && former.sa_handler == SIG_DFL)
            sigaction(signal, &action, nullptr);
    }
}

void Interrupt::setEndStatus(ExitStatus status)
{
    static_assert(std::atomic<ExitStatus>::is_always_lock_free, "read in a signal handler");
    endStatus.store(status);
}

void Interrupt::setLastWords(const std::string& text)
{
    static std::list<std::string> kept;
    if (!text.empty())
        kept.push_back(text);
    lastWords.store(text.empty() ? nullptr : &kept.back());
}

Interrupt::Interrupt()
{
    static_assert(std::atomic<const std::string*>::is_always_lock_free, "read in a signal handler");
    static_assert(std::atomic<bool>::is_always_lock_free, "the flag is set in a signal handler");
    if (pipe2(wakePipe, O_CLOEXEC | O_NONBLOCK) != 0)
        throw std::runtime_error("no pipe for signals");
    requestedFlag.store(false);
    struct sigaction action
    {
    };
    action.sa_handler = noteSignal;
    action.sa_flags = SA_RESTART | static_cast<int>(SA_RESETHAND);
    for (int index = 0; index < 2; ++index)
        sigaction(kSignals[index], &action, &formerActions[index]);
}

Interrupt::~Interrupt()
{
    for (int index = 0; index < 2; ++index)
        sigaction(kSignals[index], &formerActions[index], nullptr);
    close(wakePipe[0]);
    close(wakePipe[1]);
}

bool Interrupt::requested()
{
    return requestedFlag.load();
}

int Interrupt::descriptor() const
{
    return wakePipe[0];
}
