/// \file signals_held_back.h
/// For the change of pools, and for what must follow it: a signal that ended the process between truncation and copy
/// would leave an empty pool, and one that ended it with status 1 afterwards would speak of a run whose work is done.

#pragma once

#include <csignal>

/// Holds back every signal that can wait, of the calling thread; others must not run then. What a broken program raises
/// itself (SIGSEGV and the like) is not held back by a mask, nor is SIGKILL.
class SIGNALS_HELD_BACK {
  public:
    SIGNALS_HELD_BACK() = default;
    ~SIGNALS_HELD_BACK() { End(); }
    SIGNALS_HELD_BACK(const SIGNALS_HELD_BACK&) = delete;
    SIGNALS_HELD_BACK& operator=(const SIGNALS_HELD_BACK&) = delete;

    void Begin();
    /// Those that came meanwhile come through now.
    void End();

    /// Whether the process ends as soon as the signals come through.
    [[nodiscard]] static bool EndIsNear();

  private:
    bool active_ = false;
    sigset_t before_{};
};
