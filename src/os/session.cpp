// SPDX-License-Identifier: Apache-2.0
#include "os/session.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace tarn::os {

namespace {

constexpr std::array signals{SIGTERM, SIGHUP, SIGINT};

int ends[2] = {-1, -1};  // of a pipe: what the handler writes to is the second
std::array<struct sigaction, signals.size()> former{};
volatile std::sig_atomic_t came = 0;
void (*lateCall)(int signal) = nullptr;
bool listening = false;

void onLate(int) {
    lateCall(came);
}

void onEnd(int signal) {
    const int error = errno;
    came = signal;
    static_cast<void>(!::write(ends[1], "", 1));
    struct sigaction action {};
    action.sa_handler = onLate;
    action.sa_flags = SA_ONSTACK;
    ::sigaction(SIGALRM, &action, nullptr);
    ::alarm(LateSeconds);
    errno = error;
}

}  // namespace

void listenForEnd(void (*late)(int signal)) {
    lateCall = late;
    if (listening) return;
    if (ends[0] < 0 && ::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) return;
    struct sigaction action {};
    action.sa_handler = onEnd;
    action.sa_flags = SA_RESTART | SA_ONSTACK;
    for (std::size_t i = 0; i < signals.size(); ++i) {
        ::sigaction(signals[i], nullptr, &former[i]);
        // A signal that was ignored when the program was started, as by nohup, stays ignored.
        if (former[i].sa_handler != SIG_IGN) ::sigaction(signals[i], &action, nullptr);
    }
    listening = true;
}

void stopListeningForEnd() {
    if (!listening) return;
    for (std::size_t i = 0; i < signals.size(); ++i) ::sigaction(signals[i], &former[i], nullptr);
    listening = false;
}

int endDescriptor() {
    return listening ? ends[0] : -1;
}

int takeEndSignal() {
    char bytes[16];
    while (::read(ends[0], bytes, sizeof bytes) > 0) {}
    ::alarm(0);
    const int signal = came;
    came = 0;
    return signal;
}

}  // namespace tarn::os
