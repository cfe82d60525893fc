/// \file threads.h
/// Runs one start routine on contiguous blocks of a range of rows, one POSIX thread per block.
///
/// ARG is a struct that begins with the fields status (64-bit), start, length, thread_number (32-bit unsigned); the
/// runner fills them, the caller fills what follows them before Run(). ROW is the type of a row index.
///
/// A silent run leaves out the two lines at INFO: where one stage runs several times, the log tells of it once.
///
/// Count: ThreadCount(). A count of 1 runs the routine in the calling thread; otherwise there are min(count, rows)
/// blocks, and the first rows % count of them have one row more than the others, unless the caller cuts the range. An
/// empty range runs nothing.
///
/// Invariants while the blocks run:
/// (1) blocks are disjoint and cover the range; (2) a thread touches its own argument only; (3) every thread is joined
/// before the runner goes away, failure or not.
///
/// Failure: a routine fails by a non-zero status or by an exception of any kind, which ends in the thread, as a status.
/// A line at ALARM names the rows and the reason ("rows 1200..1799: ..."), then Run() throws the text "error in thread
/// execution" after the failed thread was joined.

#pragma once

#include <pthread.h>

#include <algorithm>
#include <cstring>
#include <exception>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "lib/baselib/containers/array.h"
#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/logging/logging.h"
#include "simulation/exception_text.h"
#include "simulation/row_blocks.h"
#include "simulation/thread_count.h"

enum class THREADS_LOG { SPOKEN, SILENT };

template <class ARG, class ROW>
class THREADS {
  public:
    using START_ROUTINE = std::function<void(ARG*)>;

    /// @param start_row, end_row  the rows start_row <= row < end_row
    /// @throws ERROR_ARGUMENT when the range ends before it starts; const char* "out of memory"
    THREADS(ROW start_row, ROW end_row, START_ROUTINE start_routine, THREADS_LOG log = THREADS_LOG::SPOKEN);

    /// Joins what still runs. Throws "error in thread execution" for a failure found here, unless an exception is
    /// already under way.
    ~THREADS() noexcept(false);  // NOLINT(bugprone-exception-escape)

    THREADS(const THREADS&) = delete;
    THREADS& operator=(const THREADS&) = delete;

    /// One argument per block; index 0 .. Count() - 1.
    ARRAY<ARG>& Arguments() { return arguments_; }
    int Count() const { return count_; }

    /// Other blocks: Count() of them, in order, that cover the range.
    void CutInto(const std::vector<ROW_BLOCK>& blocks);

    /// Makes a real thread even for a count of 1.
    void ForceThreads() { force_threads_ = true; }

    /// Runs all blocks and waits for them; to be called once.
    /// @throws const char* "can not create thread" or "error in thread execution"
    void Run();

  private:
    struct BLOCK {
        ROW start{};
        ROW length{};
    };
    struct WORKER {
        const START_ROUTINE* routine = nullptr;
        ARG* argument = nullptr;
    };

    static constexpr pthread_t kNotRunning = 65535;

    template <class T>
    static void Resize(ARRAY<T>& array, int count);
    static void* ThreadMain(void* worker);
    static void RunGuarded(const START_ROUTINE& routine, ARG& argument);

    void CutEqually();
    void PrepareArgument(int i);
    void StartThread(int i);
    bool JoinReportsFailure(int i);

    BLOCK range_;
    bool direct_;  ///< PARALLEL asks for one thread: the calling one
    int count_;
    START_ROUTINE start_routine_;
    THREADS_LOG log_;
    ARRAY<ARG> arguments_;
    ARRAY<pthread_t> handles_;
    ARRAY<WORKER> workers_;
    ARRAY<BLOCK> blocks_;
    bool force_threads_ = false;
    int exceptions_at_construction_ = std::uncaught_exceptions();
};

template <class ARG, class ROW>
THREADS<ARG, ROW>::THREADS(ROW start_row, ROW end_row, START_ROUTINE start_routine, THREADS_LOG log)
    : range_{start_row, static_cast<ROW>(end_row - start_row)},
      direct_(false),
      count_(ThreadCount()),
      start_routine_(std::move(start_routine)),
      log_(log) {
    if (end_row < start_row) {
        Log() << LOGGING_LEVEL::ALARM << "work range of rows " << static_cast<long long>(start_row) << " to "
              << static_cast<long long>(end_row) << " ends before it starts\n";
        throw ERROR_ARGUMENT();
    }
    direct_ = count_ == 1;
    count_ = BlockCount(static_cast<long long>(range_.length), count_);
    Resize(arguments_, count_);
    Resize(handles_, count_);
    Resize(workers_, count_);
    Resize(blocks_, count_ + 2);
    std::fill(handles_.begin(), handles_.end(), kNotRunning);
    CutEqually();
    if (log_ == THREADS_LOG::SPOKEN) Log().Message(LOGGING_LEVEL::INFO, " Initialised work_range");
}

template <class ARG, class ROW>
THREADS<ARG, ROW>::~THREADS() noexcept(false) {  // NOLINT(bugprone-exception-escape)
    bool failed = false;
    for (int i = 0; i < count_; ++i) failed = JoinReportsFailure(i) || failed;
    if (failed && std::uncaught_exceptions() == exceptions_at_construction_) throw "error in thread execution";
}

template <class ARG, class ROW>
void THREADS<ARG, ROW>::Run() {
    if (log_ == THREADS_LOG::SPOKEN) Log().Message(LOGGING_LEVEL::INFO, " Running threads");
    if (count_ == 0) return;
    if (direct_ && !force_threads_) {
        PrepareArgument(0);
        RunGuarded(start_routine_, arguments_[0]);
        if (arguments_[0].status != 0) throw "error in thread execution";
        return;
    }
    pthread_setconcurrency(count_ + 1);
    for (int i = 0; i < count_; ++i) StartThread(i);
    for (int i = 0; i < count_; ++i) {
        if (JoinReportsFailure(i)) throw "error in thread execution";
    }
}

template <class ARG, class ROW>
template <class T>
void THREADS<ARG, ROW>::Resize(ARRAY<T>& array, int count) {
    if (array.Resize({0, count}) == 0) return;
    Log().Message(LOGGING_LEVEL::ALARM, "can not change array size: out of memory");
    throw "out of memory";
}

template <class ARG, class ROW>
void THREADS<ARG, ROW>::CutInto(const std::vector<ROW_BLOCK>& blocks) {
    for (int i = 0; i < count_; ++i)
        blocks_[i] = {static_cast<ROW>(blocks[i].start), static_cast<ROW>(blocks[i].length)};
}

template <class ARG, class ROW>
void THREADS<ARG, ROW>::CutEqually() {
    for (int i = 0; i < count_; ++i) {
        const ROW_BLOCK block =
            RowBlock(static_cast<long long>(range_.start), static_cast<long long>(range_.length), count_, i);
        blocks_[i] = {static_cast<ROW>(block.start), static_cast<ROW>(block.length)};
    }
}

template <class ARG, class ROW>
void THREADS<ARG, ROW>::PrepareArgument(int i) {
    ARG& argument = arguments_[i];
    argument.status = 0;
    argument.start = blocks_[i].start;
    argument.length = blocks_[i].length;
    argument.thread_number = static_cast<unsigned>(i);
}

template <class ARG, class ROW>
void THREADS<ARG, ROW>::StartThread(int i) {
    PrepareArgument(i);
    workers_[i] = {&start_routine_, &arguments_[i]};
    pthread_t handle{};
    if (const int error = pthread_create(&handle, nullptr, &ThreadMain, &workers_[i]); error != 0) {
        Log().Message(LOGGING_LEVEL::ALARM, "can not create thread due to error number: %d", error);
        Log().Message(LOGGING_LEVEL::ALARM, "reason: %s", std::strerror(error));
        throw "can not create thread";
    }
    handles_[i] = handle;
}

template <class ARG, class ROW>
bool THREADS<ARG, ROW>::JoinReportsFailure(int i) {
    if (handles_[i] == kNotRunning) return false;
    pthread_join(std::exchange(handles_[i], kNotRunning), nullptr);
    return arguments_[i].status != 0;
}

template <class ARG, class ROW>
void* THREADS<ARG, ROW>::ThreadMain(void* worker) {
    const WORKER* const own = static_cast<const WORKER*>(worker);
    RunGuarded(*own->routine, *own->argument);
    return nullptr;
}

/// No exception may leave a POSIX thread: it would end the process without a word.
template <class ARG, class ROW>
void THREADS<ARG, ROW>::RunGuarded(const START_ROUTINE& routine, ARG& argument) {
    std::string reason;
    try {
        routine(&argument);
        if (argument.status == 0) return;
        reason = "failed with status " + std::to_string(argument.status);
    } catch (...) {
        argument.status = 1;
        reason = CurrentExceptionText();
    }
    const auto start = static_cast<long long>(argument.start);
    Log().Message(LOGGING_LEVEL::ALARM, "rows %lld..%lld: %s", start,
                  start + static_cast<long long>(argument.length) - 1, reason.c_str());
}
