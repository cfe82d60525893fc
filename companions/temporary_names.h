/// \file temporary_names.h
/// The temporary files of this process, so that a signal that ends it can remove them.
/// Threads: one thread registers; the handler may interrupt it anywhere.

#pragma once

#include <csignal>
#include <string>

/// Beyond 64 names a signal leaves the file behind; nothing else changes.
void RememberTemporary(const std::string& name);
void ForgetTemporary(const std::string& name) noexcept;

/// SIGINT, SIGTERM, SIGHUP and SIGPIPE remove the files and then end the process as they would have without.
void InstallTemporaryFileRemoval();

/// While it lives, these signals wait: several renames belong together.
class TEMPORARY_NAMES_KEPT {
  public:
    TEMPORARY_NAMES_KEPT();
    ~TEMPORARY_NAMES_KEPT();
    TEMPORARY_NAMES_KEPT(const TEMPORARY_NAMES_KEPT&) = delete;
    TEMPORARY_NAMES_KEPT& operator=(const TEMPORARY_NAMES_KEPT&) = delete;

  private:
    sigset_t before_{};
};
