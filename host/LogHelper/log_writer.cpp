// SPDX-License-Identifier: Apache-2.0

#include "host/LogHelper/log_writer.h"

#include <cerrno>
#include <climits>
#include <iterator>
#include <new>

#include "host/LogHelper/log_stamp.h"
#include "host/LogHelper/log_text.h"
#include "host/common/paths.h"
#include "host/common/user_folders.h"
#include "platform/process_end.h"

namespace LogHelper {

namespace {

using Platform::OtherThreadsAreGone;

constexpr const char* kFileName = "DeviceDiscover.log";
constexpr int kNoLevel = INT_MAX;

// How long the thread waits for more lines after the first, to combine many lines in one write.
constexpr std::chrono::milliseconds kGathering(5);
constexpr std::size_t kGatheredEnough = LineQueue::kCapacity / 2;
constexpr std::size_t kLargestWrite = std::size_t{128} * 1024;
// How long a line waits for room in the queue, and how long a signal handler waits for a running
// write.
constexpr int kPatienceForRoom = 50;    // milliseconds
constexpr int kPatienceForWrite = 100;  // milliseconds

constexpr std::size_t kLongestLastWords = 400;  // bytes

// A second and a distance from UTC in minutes, in one number.
constexpr std::int64_t kRoomForDistance = 4096;
constexpr std::int64_t kNoDistance = kRoomForDistance / 2;

std::chrono::minutes DistanceIn(std::int64_t secondAndDistance) {
    return std::chrono::minutes(secondAndDistance % kRoomForDistance - kNoDistance);
}

std::atomic<LogWriter*> theInstance{nullptr};
static_assert(std::atomic<LogWriter*>::is_always_lock_free, "a signal handler uses it");

// When the system terminates all other threads, a lock that one of them holds stays locked. Its
// data can then be used without the lock: there is only one thread.
std::unique_lock<std::mutex> LockUnlessAlone(std::mutex& mutex) {
    return OtherThreadsAreGone() ? std::unique_lock(mutex, std::defer_lock)
                                 : std::unique_lock(mutex);
}

// As many complete lines as fit into one write; at least one.
std::string_view NextPiece(std::string_view lines) {
    if (lines.size() <= kLargestWrite) {
        return lines;
    }
    const std::size_t lastEnd = lines.rfind('\n', kLargestWrite - 1);
    const std::size_t end = lastEnd != std::string_view::npos ? lastEnd : lines.find('\n');
    return lines.substr(0, end == std::string_view::npos ? end : end + 1);
}

class Raised {
public:
    explicit Raised(std::atomic<bool>& newFlag) : flag(newFlag) { flag = true; }
    ~Raised() { flag = false; }
    Raised(const Raised&) = delete;
    Raised& operator=(const Raised&) = delete;

private:
    std::atomic<bool>& flag;
};

// Destroyed after all users of this library.
struct AtTheEnd {
    ~AtTheEnd() { LogWriter::EndQueueing(); }
};
const AtTheEnd atTheEnd;

}  // namespace

LogWriter& LogWriter::GetInstance() {
    static LogWriter& instance = *new LogWriter;
    return instance;
}

LogWriter::LogWriter() : secondAndDistance(kNoDistance), wakeUp(std::make_unique<WakeUp>()) {
    Configure({});
    theInstance = this;
    AroundFork([] { theInstance.load()->BeforeFork(); }, [] { theInstance.load()->InParent(); },
               [] { theInstance.load()->InChild(); });
}

void LogWriter::Configure(const Settings& settings) {
    const NoCancellation whole;
    Flush();
    const Lock lock = LockUnlessAlone(fileMutex);
    const Raised busy(isFileBusy);
    showSecrets = settings.showSecrets;
    toTerminal = settings.terminal;
    toFile = settings.file;
    UseFile(settings);
    lowestLevel = settings.terminal || settings.file ? static_cast<int>(settings.level) : kNoLevel;
}

void LogWriter::UseFile(const Settings& settings) {
    if (!settings.file) {
        file.UseNone();
    } else if (!settings.filePath.empty()) {
        // Make the path absolute: the program may change its folder.
        file.Use(Host::AbsolutePath(Host::PathFromUtf8(settings.filePath)), {});
    } else {
        const Host::UserFolder users = Host::UserStateFolder();
        file.Use(users.path.empty() ? users.path : users.path / kFileName,
                 "there is no folder for it, " + users.reason);
    }
}

std::string LogWriter::FilePath() {
    const Lock lock = LockUnlessAlone(fileMutex);
    return file.IsFailing() ? std::string() : Host::PathToUtf8(file.Path());
}

void LogWriter::WriteLine(LOG_MESSAGE_LEVEL level, std::wstring_view line) {
    const NoCancellation whole;
    const LogStamp stamp = Stamp(level);
    std::string text;
    text.reserve(stamp.Text().size() + line.size() + 1);
    text += stamp.Text();
    AppendOneLine(text, line, showSecrets);
    text += '\n';
    const bool isUrgent = level >= LOG_LEVEL_ERROR;
    if (!toTerminal) {
        Queue(text, isUrgent);
        return;
    }
    const Lock lock = LockUnlessAlone(terminalMutex);
    WriteToStandardError(text);
    Queue(text, isUrgent);
}

LogStamp LogWriter::Stamp(LOG_MESSAGE_LEVEL level) {
    const auto now = std::chrono::system_clock::now();
    return {now, FromUtc(now), ThreadId(), level};
}

// The offset is queried once a second, and cached together with its second in one number.
std::chrono::minutes LogWriter::FromUtc(std::chrono::system_clock::time_point now) {
    const auto second = std::chrono::floor<std::chrono::seconds>(now).time_since_epoch().count();
    std::int64_t known = secondAndDistance;
    if (known / kRoomForDistance != second) {
        known = second * kRoomForDistance + kNoDistance + DistanceFromUtc(now).count();
        secondAndDistance = known;
    }
    return DistanceIn(known);
}

void LogWriter::Queue(std::string_view line, bool isUrgent) {
    if (!toFile) {
        return;
    }
    if (!isUrgent && !isSynchronous && !OtherThreadsAreGone() && HasThread()) {
        PushWithPatience(line);
        return;
    }
    if (!Push(line)) {
        Drain(line);
    }
    Drain();
}

bool LogWriter::HasThread() {
    if (!hasThread) {
        const Lock lock = LockUnlessAlone(queueMutex);
        if (!hasThread) {
            hasThread = StartThread([] { theInstance.load()->RunThread(); });
        }
    }
    return hasThread;
}

bool LogWriter::Push(std::string_view line) {
    const Lock lock = LockUnlessAlone(queueMutex);
    const std::size_t before = queue.Size();
    PushTheLost();
    const bool isPushed = lost == 0 && queue.Push(line);
    if (!isAnnounced || (before < kGatheredEnough && queue.Size() >= kGatheredEnough)) {
        isAnnounced = true;
        wakeUp->Signal();
    }
    return isPushed;
}

void LogWriter::PushWithPatience(std::string_view line) {
    for (int patience = isStuck ? 0 : kPatienceForRoom; !Push(line); --patience) {
        if (patience == 0) {
            const Lock lock = LockUnlessAlone(queueMutex);
            isStuck = true;
            ++lost;
            return;
        }
        PauseAMillisecond();
    }
}

// Writes one line with the number of lost lines in their place.
void LogWriter::PushTheLost() {
    const std::uint64_t count = lost;
    if (count == 0) {
        return;
    }
    std::string line(Stamp(LOG_LEVEL_WARNING).Text());
    line += "LogHelper: lost lines: " + std::to_string(count) + "; the file took no more\n";
    if (queue.Push(line)) {
        lost -= count;
    }
}

void LogWriter::RunThread() {
    for (;;) {
        wakeUp->Wait();
        // A signal handler would lose lines logged before the file exists.
        if (file.Raw() != kNoFile) {
            wakeUp->WaitFor(kGathering);
        }
        try {
            Flush();
        } catch (const std::bad_alloc&) {
            // These lines are lost.
            continue;
        }
    }
}

void LogWriter::Flush() {
    const NoCancellation whole;
    Drain();
    if (queue.Size() != 0) {
        // The number of lines lost before.
        Drain();
    }
}

// `next`: a line that did not fit; it follows the written lines.
void LogWriter::Drain(std::string_view next) {
    if (OtherThreadsAreGone() && isFileBusy) {
        DrainAlone(next);
        return;
    }
    const Lock lock = LockUnlessAlone(fileMutex);
    const Raised busy(isFileBusy);
    if (isRescuing) {
        return;
    }
    LineQueue::Buffer& filled = TurnQueue(next);
    for (std::string_view lines = filled.Unwritten(); !lines.empty(); lines = filled.Unwritten()) {
        const std::string_view piece = NextPiece(lines);
        file.Write(piece);
        filled.MarkWritten(piece.size());
    }
    isStuck = false;
}

LineQueue::Buffer& LogWriter::TurnQueue(std::string_view next) {
    const Lock lock = LockUnlessAlone(queueMutex);
    LineQueue::Buffer& filled = queue.Turn();
    isAnnounced = false;
    PushTheLost();
    queue.Push(next);
    return filled;
}

// The writing thread was terminated: the C library's file may stay locked forever, or not be open.
void LogWriter::DrainAlone(std::string_view next) {
    if (alone == kNoFile) {
        alone = file.Raw() != kNoFile ? file.Raw() : OpenRaw(file.Path());
    }
    WriteWaitingRaw(alone);
    WriteRaw(alone, next);
}

void LogWriter::WriteWaitingRaw(RawFile raw) noexcept {
    for (LineQueue::Buffer* const buffer : {&queue.Older(), &queue.Newer()}) {
        const std::string_view lines = buffer->Unwritten();
        WriteRaw(raw, lines);
        buffer->MarkWritten(lines.size());
    }
}

void LogWriter::EndQueueing() {
    if (LogWriter* const writer = theInstance) {
        writer->isSynchronous = true;
        writer->Flush();
    }
}

void LogWriter::WriteInSignalHandler(std::string_view text) noexcept {
    if (LogWriter* const writer = theInstance) {
        const int error = errno;
        writer->Rescue(text);
        errno = error;
    }
}

// If two threads crash at once, the first writes the queued lines.
void LogWriter::Rescue(std::string_view text) noexcept {
    const bool isFirst = !isRescuing.exchange(true);
    for (int patience = kPatienceForWrite; isFileBusy && patience > 0; --patience) {
        PauseAMillisecond();
    }
    const RawFile raw = FileInHandler();
    if (raw != kNoFile && isFirst) {
        WriteWaitingRaw(raw);
    }
    if (raw != kNoFile) {
        WriteLastLine(raw, text);
    }
    if (isFirst) {
        isRescuing = false;
    }
}

// A program that crashes immediately has not opened the file. While the file is in use its path may
// change.
RawFile LogWriter::FileInHandler() noexcept {
    const RawFile raw = file.Raw();
    return raw != kNoFile || isFileBusy || file.Path().empty() ? raw : OpenRaw(file.Path());
}

void LogWriter::WriteLastLine(RawFile raw, std::string_view text) noexcept {
    const std::int64_t known = secondAndDistance;
    const LogStamp stamp(std::chrono::system_clock::now(), DistanceIn(known), ThreadIdInHandler(),
                         LOG_LEVEL_ERROR);
    char line[kLongestLastWords + 128];
    std::size_t size = stamp.Text().copy(line, std::size(line));
    for (const char character : text.substr(0, kLongestLastWords)) {
        const bool isControl = static_cast<unsigned char>(character) < 0x20 || character == 0x7F;
        line[size++] = isControl ? '?' : character;
    }
    line[size++] = '\n';
    WriteRaw(raw, {line, size});
}

// The parent continues to write its own lines.
void LogWriter::BeforeFork() {
    terminalMutex.lock();
    fileMutex.lock();
    queueMutex.lock();
}

void LogWriter::InParent() {
    queueMutex.unlock();
    fileMutex.unlock();
    terminalMutex.unlock();
}

// The child has no other threads, and a wake-up sent before the fork is lost.
void LogWriter::InChild() {
    queue.Clear();
    isAnnounced = false;
    lost = 0;
    hasThread = false;
    static_cast<void>(wakeUp.release());
    wakeUp = std::make_unique<WakeUp>();
    InParent();
}

}  // namespace LogHelper
