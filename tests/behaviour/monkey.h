// SPDX-License-Identifier: GPL-3.0-or-later
//
// A user who does anything: keys, clicks, commands, answers and closed windows drawn at random from a seed. What
// it must not be able to do is to crash the program, to make it report an error of its own (7xx), or to freeze
// it. The same seed and steps give the same doings as long as no tool and no timer comes between.
#pragma once

#include <chrono>
#include <random>
#include <string>
#include <vector>

class QWidget;

namespace tarn {

class Monkey {
public:
    // `folder` holds the files that it may open and write; its doings are logged to `logFile`.
    Monkey(unsigned seed, int steps, std::string folder, const std::string& logFile);
    virtual ~Monkey() = default;
    Monkey(const Monkey&) = delete;
    Monkey& operator=(const Monkey&) = delete;
    void idle();  // the next step
    [[nodiscard]] bool finished() const { return step_ >= steps_ || failed(); }
    [[nodiscard]] bool failed() const { return !failure_.empty(); }
    [[nodiscard]] const std::string& failure() const { return failure_; }
    // How many steps held the user up for more than a second, and the longest of all.
    [[nodiscard]] std::string slowness() const;

protected:
    virtual bool waits() { return false; }  // a step is still under way
    virtual void act();                     // a step, with the splash gone and no box open
    virtual void answered(const std::string&, const std::string&) {}  // a box of that title, with that

    int below(int bound) { return static_cast<int>(random_() % static_cast<unsigned>(bound)); }
    template <class Item>
    const Item& one(const std::vector<Item>& items) {
        return items[static_cast<std::size_t>(below(static_cast<int>(items.size())))];
    }
    void log(const std::string& what);
    void answer();
    void fail(const std::string& what);
    void command();
    void command(const std::vector<std::string>& prefixes);
    void press(const std::string& window = "");  // of all that take input, if empty
    void key(QWidget* to);
    void type(QWidget* to);
    void mouse();
    void closeWindow();
    std::string file(bool toSave);
    [[nodiscard]] const std::string& folder() const { return folder_; }
    void startClock() { last_ = std::chrono::steady_clock::now(); }

private:
    void lookForErrors();
    void lookAtClock();

    std::mt19937 random_;
    int step_ = 0, steps_;
    std::string folder_, failure_, logFile_;
    std::chrono::steady_clock::time_point last_;
    long slow_ = 0, longest_ = 0;  // milliseconds
    int longestStep_ = 0;
};

// A folder of files of all kinds, sound and broken, with those of `examples`, and tools that end at once.
void prepareMonkey(const std::string& examples, const std::string& folder, const std::string& profile);

// What the keys go to; null if there is no window.
QWidget* keyReceiver();

}  // namespace tarn
