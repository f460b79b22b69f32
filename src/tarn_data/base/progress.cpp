// SPDX-License-Identifier: Apache-2.0
//
// A signal only sets a word that the kernel's reads and writes ask for. So no file is ever left half
// written, and a target that was not replaced yet stays as it was.
#include "kernel/run/progress.h"
#include "tarn_data/base/problem.h"
#include "tarn_data/base/shown.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <unistd.h>

namespace tarn::datatool {

namespace {

using Clock = std::chrono::steady_clock;
constexpr auto quiet = std::chrono::milliseconds(400);  // work that takes less shows nothing
constexpr auto pause = std::chrono::milliseconds(100), pauseOfLines = std::chrono::milliseconds(900);

bool everywhere = false;

volatile std::sig_atomic_t stopRequest = 0;

struct Shown {
    std::string what;
    Clock::time_point next;
    bool visible = false;
};
Shown progress;

void onSignal(int signal) {
    stopRequest = signal;
}

bool show(std::int64_t done, std::int64_t total) {
    if (stopRequest != 0) return false;
    const auto now = Clock::now();
    if (now < progress.next) return true;
    const bool terminal = ::isatty(STDERR_FILENO) != 0;
    if (!terminal && !everywhere) return true;
    const int percent = total > 0 ? static_cast<int>(done < total ? done * 100 / total : 100) : 0;
    std::fprintf(stderr, terminal ? "\r\033[K%s: %d %%" : "tarn-data: %s: %d %%\n", progress.what.c_str(),
                 percent);
    std::fflush(stderr);
    progress.visible = terminal;
    progress.next = now + (terminal ? pause : pauseOfLines);
    return true;
}

}  // namespace

Work::Work(const std::string& what) {
    progress = {shown(what), Clock::now() + quiet, false};
    UseProgress(show);
}

Work::~Work() {
    UseProgress(nullptr);
    if (progress.visible) std::fputs("\r\033[K", stderr);
    std::fflush(stderr);
}

bool Steps::step(std::int64_t bytes) {
    done_ += bytes;
    if (done_ - told_ < ProgressStep) return stopRequest == 0;
    told_ = done_;
    return Progress(done_, total_);
}

void showProgressEverywhere() {
    everywhere = true;
}

Problem stoppedProblem() {
    return {"Stopped.", "No file was changed."};
}

void catchSignals() {
    struct sigaction action {};
    action.sa_handler = onSignal;
    action.sa_flags = SA_RESTART;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction before {};
        ::sigaction(signal, nullptr, &before);
        // What the caller ignores stays ignored (nohup).
        if (before.sa_handler != SIG_IGN) ::sigaction(signal, &action, nullptr);
    }
}

int stopSignal() {
    return stopRequest;
}

void endBySignal(int signal) {
    std::fflush(nullptr);
    std::signal(signal, SIG_DFL);
    std::raise(signal);
    ::_exit(Stopped + signal);
}

}  // namespace tarn::datatool
