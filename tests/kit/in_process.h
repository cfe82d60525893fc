/// \file in_process.h

#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <functional>

/// Runs in a process of its own. @return its exit status, or minus the signal that ended it
inline int InProcess(const std::function<void()>& action) {
    const pid_t child = fork();
    if (child == 0) {
        action();
        std::exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}
