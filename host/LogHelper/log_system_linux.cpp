// SPDX-License-Identifier: Apache-2.0

#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <semaphore.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <stdexcept>
#include <string>
#include <system_error>

#include "host/LogHelper/log_system.h"

namespace LogHelper {

namespace {

constexpr mode_t kOwnFolder = 0700;
constexpr mode_t kOwnFile = 0600;
constexpr int kPatienceMilliseconds = 1000;

[[noreturn]] void ThrowSystemError(const std::filesystem::path& path) {
    throw std::system_error(errno, std::generic_category(), path.string());
}

void MakeFolder(const std::filesystem::path& folder) {
    if (folder.empty() || mkdir(folder.c_str(), kOwnFolder) == 0 || errno == EEXIST) {
        return;
    }
    if (errno != ENOENT || folder == folder.parent_path()) {
        ThrowSystemError(folder);
    }
    MakeFolder(folder.parent_path());
    if (mkdir(folder.c_str(), kOwnFolder) != 0 && errno != EEXIST) {
        ThrowSystemError(folder);
    }
}

// Creates the missing folders of the path; ignores failures.
void MakeFoldersWithoutMemory(const char* path) noexcept {
    char folder[PATH_MAX];
    for (std::size_t at = 0; path[at] != '\0' && at + 1 < sizeof folder; ++at) {
        if (path[at] == '/' && at != 0) {
            folder[at] = '\0';
            mkdir(folder, kOwnFolder);
        }
        folder[at] = path[at];
    }
}

// Whether the file has a reader: writing to a pipe or a socket may block, or end the process when
// the reader has gone.
bool HasAReader(const struct stat& status) {
    return !S_ISREG(status.st_mode) && !S_ISCHR(status.st_mode);
}

void RefuseWhatHasAReader(const std::filesystem::path& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) == 0 && HasAReader(status)) {
        throw std::runtime_error(path.string() + ": neither a regular file nor a character device");
    }
}

// Suppresses SIGPIPE from writes of this thread during its own lifetime. A SIGPIPE that was pending
// before stays pending.
class NoBrokenPipeSignal {
public:
    NoBrokenPipeSignal() {
        sigemptyset(&brokenPipe);
        sigaddset(&brokenPipe, SIGPIPE);
        sigset_t pending;
        sigpending(&pending);
        wasPending = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &brokenPipe, &previous);
    }
    ~NoBrokenPipeSignal() {
        constexpr timespec noWait{};
        while (!wasPending && sigtimedwait(&brokenPipe, nullptr, &noWait) < 0 && errno == EINTR) {
        }
        pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    }
    NoBrokenPipeSignal(const NoBrokenPipeSignal&) = delete;
    NoBrokenPipeSignal& operator=(const NoBrokenPipeSignal&) = delete;

private:
    sigset_t brokenPipe;
    sigset_t previous;
    bool wasPending;
};

// Opens standard error for non-blocking writes. The stream itself is shared with other programs and
// stays unchanged; it is used if it cannot be opened again, or if writing to it never blocks.
class StandardError {
public:
    StandardError() {
        struct stat status {};
        if (fstat(STDERR_FILENO, &status) == 0 &&
            (S_ISFIFO(status.st_mode) || isatty(STDERR_FILENO) == 1)) {
            own = open("/proc/self/fd/2", O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
        }
    }
    ~StandardError() {
        if (own >= 0) {
            close(own);
        }
    }
    StandardError(const StandardError&) = delete;
    StandardError& operator=(const StandardError&) = delete;

    int Descriptor() const { return own >= 0 ? own : STDERR_FILENO; }

private:
    int own = -1;
};

// Writes all of the text; false when it cannot be written, or not in time.
bool WriteWithin(int milliseconds, int stream, std::string_view text) {
    while (!text.empty()) {
        pollfd output{stream, POLLOUT, 0};
        const int ready = poll(&output, 1, milliseconds);
        const ssize_t written =
            ready > 0 ? write(stream, text.data(), std::min<std::size_t>(text.size(), PIPE_BUF))
                      : ready;
        if (written > 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (ready == 0 || (errno != EINTR && errno != EAGAIN)) {
            return false;
        }
    }
    return true;
}

// Cached, because the system call takes as long as composing half a line. Trivially destructible.
constinit thread_local std::uint64_t ownThreadId = 0;

// All signals except those raised by faults of the thread itself.
sigset_t OthersSignals() {
    sigset_t signals;
    sigfillset(&signals);
    for (const int own : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS, SIGABRT}) {
        sigdelset(&signals, own);
    }
    return signals;
}

void* RunBody(void* body) {
    reinterpret_cast<void (*)()>(body)();
    return nullptr;
}

sem_t* Semaphore(void* system) {
    return static_cast<sem_t*>(system);
}

}  // namespace

void PrepareFile(const std::filesystem::path& path) {
    RefuseWhatHasAReader(path);
    MakeFolder(path.parent_path());
    // Never block, whatever the path names now.
    constexpr int flags = O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    const int file = open(path.c_str(), flags, kOwnFile);
    if (file < 0) {
        ThrowSystemError(path);
    }
    close(file);
}

bool IsStillThere(std::FILE* file, const std::filesystem::path& path) {
    struct stat open {};
    struct stat named {};
    return fstat(fileno(file), &open) == 0 && stat(path.c_str(), &named) == 0 &&
           open.st_dev == named.st_dev && open.st_ino == named.st_ino;
}

void WriteToStandardError(std::string_view text) noexcept {
    // A stalled reader delays one line; later lines do not wait until it reads again.
    static std::atomic<bool> stalls = false;
    const NoBrokenPipeSignal noSignal;
    const StandardError errors;
    stalls = !WriteWithin(stalls ? 0 : kPatienceMilliseconds, errors.Descriptor(), text);
}

RawFile RawFileOf(std::FILE* file) {
    return fileno(file);
}

RawFile OpenRaw(const std::filesystem::path& path) noexcept {
    constexpr int flags = O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    int file = open(path.c_str(), flags, kOwnFile);
    if (file < 0 && errno == ENOENT) {
        MakeFoldersWithoutMemory(path.c_str());
        file = open(path.c_str(), flags, kOwnFile);
    }
    struct stat status {};
    if (file >= 0 && (fstat(file, &status) != 0 || HasAReader(status))) {
        close(file);
        return kNoFile;
    }
    return file;
}

void WriteRaw(RawFile file, std::string_view text) noexcept {
    while (!text.empty()) {
        const ssize_t written = write(static_cast<int>(file), text.data(), text.size());
        if (written > 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno != EINTR) {
            return;
        }
    }
}

std::uint64_t ThreadId() {
    if (ownThreadId == 0) {
        ownThreadId = ThreadIdInHandler();
    }
    return ownThreadId;
}

std::uint64_t ThreadIdInHandler() noexcept {
    return static_cast<std::uint64_t>(syscall(SYS_gettid));
}

void PauseAMillisecond() noexcept {
    constexpr timespec millisecond{0, 1000000};
    nanosleep(&millisecond, nullptr);
}

std::chrono::minutes DistanceFromUtc(std::chrono::system_clock::time_point time) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
    std::tm local{};
    localtime_r(&seconds, &local);
    constexpr long secondsAMinute = 60;
    return std::chrono::minutes(local.tm_gmtoff / secondsAMinute);
}

WakeUp::WakeUp() : system(new sem_t) {
    sem_init(Semaphore(system), 0, 0);
}

WakeUp::~WakeUp() {
    sem_destroy(Semaphore(system));
    delete Semaphore(system);
}

void WakeUp::Signal() {
    sem_post(Semaphore(system));
}

void WakeUp::Wait() {
    while (sem_wait(Semaphore(system)) != 0 && errno == EINTR) {
    }
}

void WakeUp::WaitFor(std::chrono::milliseconds time) {
    constexpr long nanosecondsASecond = 1000000000;
    timespec end{};
    clock_gettime(CLOCK_MONOTONIC, &end);
    const std::chrono::nanoseconds nanoseconds = time;
    end.tv_nsec += static_cast<long>(nanoseconds.count() % nanosecondsASecond);
    end.tv_sec += nanoseconds.count() / nanosecondsASecond + end.tv_nsec / nanosecondsASecond;
    end.tv_nsec %= nanosecondsASecond;
    while (sem_clockwait(Semaphore(system), CLOCK_MONOTONIC, &end) != 0 && errno == EINTR) {
    }
}

// The library is linked so that it is never unloaded.
bool StartThread(void (*body)()) {
    const sigset_t others = OthersSignals();
    sigset_t previous;
    pthread_sigmask(SIG_BLOCK, &others, &previous);
    pthread_t thread{};
    const bool started =
        pthread_create(&thread, nullptr, RunBody, reinterpret_cast<void*>(body)) == 0;
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
    if (started) {
        pthread_detach(thread);
    }
    return started;
}

void AroundFork(void (*before)(), void (*inParent)(), void (*inChild)()) {
    static void (*child)();
    child = inChild;
    pthread_atfork(before, inParent, [] {
        // The only thread of the new process has a new number.
        ownThreadId = 0;
        child();
    });
}

NoCancellation::NoCancellation() {
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &previous);
}

NoCancellation::~NoCancellation() {
    pthread_setcancelstate(previous, nullptr);
}

}  // namespace LogHelper
