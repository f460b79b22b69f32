// SPDX-License-Identifier: Apache-2.0
//
// Writing to a pipe whose reader may have gone, for this layer's own use.
#pragma once

#include <cerrno>
#include <csignal>
#include <ctime>
#include <pthread.h>

namespace tarn::os {

// For the lifetime of this, a pipe without a reader is an error of the write, not the end of the program.
// What the program does about the signal stays as it is, and programs that are started get it so.
class PipeSignalAside {
public:
    PipeSignalAside() {
        sigset_t pending;
        sigemptyset(&pipe_);
        sigaddset(&pipe_, SIGPIPE);
        ::sigpending(&pending);
        came_ = sigismember(&pending, SIGPIPE) == 1;
        ::pthread_sigmask(SIG_BLOCK, &pipe_, &before_);
    }
    ~PipeSignalAside() {
        const int number = errno;
        const timespec now{};
        while (!came_ && ::sigtimedwait(&pipe_, nullptr, &now) < 0 && errno == EINTR) {}
        ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
        errno = number;
    }
    PipeSignalAside(const PipeSignalAside&) = delete;
    PipeSignalAside& operator=(const PipeSignalAside&) = delete;

private:
    sigset_t pipe_{}, before_{};
    bool came_;
};

}  // namespace tarn::os
