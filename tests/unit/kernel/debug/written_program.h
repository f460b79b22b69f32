// SPDX-License-Identifier: Apache-2.0
//
// Programs for tests of stops. A program is written as its functions, each with the statements that one run of it comes to, and
// calls the run-time just as a compiled one does.
//
//     A.main@1: 2 >B.f 3      function main of class A, whose head is line 1: line 2, which calls f of class B, then line 3
//     >f*3   calls f with 3   ^  calls the same function with one less, unless that is -1: the last one has 0
//     [3 5 6 ]  three times   x  out of the loop, xx out of two   x@2  in the second time only   i@2  on to the next time
//     ?1 5 :  line 5 if the function was called with 1, else nothing, up to the colon
//     !601   sets an error    /  returns     c9  stamps line 9 with action 1     l9  with action 2     h9  with a handler
//
// A stop is told as class, line and depth: "A2/1".
#pragma once

#include "unit/kernel/debug/debug_fixture.h"

#include "kernel/run/errors.h"

#include <charconv>
#include <map>
#include <sstream>

namespace tarn {

inline int handled = 0;  // errors that a handler of a program took

inline void handler(std::int32_t) {
    ++handled;
    ContinueAfterError();
}

inline int numberIn(std::string_view text) {
    int number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

struct Function {
    std::string className, name;
    int head = 0;
    std::vector<std::string> words;
};

class Program {
public:
    explicit Program(const std::vector<std::string>& functions) {
        for (const std::string& text : functions) add(text);
    }
    void run() { call(first_, 0); }

private:
    void add(const std::string& text) {
        std::istringstream words(text);
        std::string head;
        words >> head;
        const std::size_t dot = head.find('.'), at = head.find('@');
        Function function{
            head.substr(0, dot), head.substr(dot + 1, at - dot - 1), numberIn(head.substr(at + 1)), {}};
        for (std::string word; words >> word;) function.words.push_back(word);
        if (first_.empty()) first_ = function.name;
        functions_[function.name] = std::move(function);
    }

    void call(const std::string& name, int argument) {
        const Function& function = functions_.at(name);
        const Called frame(function.className.c_str(), function.name.c_str(), function.head);
        leaving_ = 0;
        std::size_t at = 0;
        runWords(function, at, argument, 1);
        leaving_ = 0;
        returning_ = false;
    }

    // Runs to the end, or to the "]" of the loop whose words these are.
    void runWords(const Function& function, std::size_t& at, int argument, int time) {
        while (at < function.words.size()) {
            const std::string& word = function.words[at++];
            if (word == "]") return;
            if (word.front() == '[')
                loop(function, at, argument, numberIn(word.substr(1)));
            else
                runWord(function, word, at, argument, time);
            if (returning_ || leaving_ > 0 || iterating_) {
                skipToEnd(function, at);
                return;
            }
        }
    }
    void loop(const Function& function, std::size_t& at, int argument, int times) {
        std::size_t end = at;
        skipToEnd(function, end);
        for (int time = 1; time <= times; ++time) {
            std::size_t here = at;
            runWords(function, here, argument, time);
            iterating_ = false;
            if (returning_) break;
            if (leaving_ > 0) {
                --leaving_;
                break;
            }
        }
        at = end;
    }
    static void skipToEnd(const Function& function, std::size_t& at) {
        for (int depth = 1; at < function.words.size() && depth > 0; ++at)
            depth += function.words[at].front() == '[' ? 1 : function.words[at] == "]" ? -1 : 0;
    }
    void runWord(const Function& function, const std::string& word, std::size_t& at, int argument, int time) {
        const std::string rest = word.substr(1);
        const std::size_t sign = rest.find_first_of("*@");
        const int number = sign == std::string::npos ? 0 : numberIn(rest.substr(sign + 1));
        const bool now = sign == std::string::npos || number == time;
        switch (word.front()) {
        case '>': return call(rest.substr(rest.find('.') + 1, sign - (rest.find('.') + 1)), number);
        case '^':
            if (argument > 0) call(function.name, argument - 1);
            return;
        case 'x':
            if (now) leaving_ = rest.starts_with('x') ? 2 : 1;
            return;
        case 'i': iterating_ = now; return;
        case '?':
            if (numberIn(rest) != argument)
                while (at < function.words.size() && function.words[at++] != ":") {}
            return;
        case ':': return;
        case '!': return SetError(numberIn(rest));
        case '/': returning_ = true; return;
        case 'c': return stampAt(numberIn(rest), ClearErrors);
        case 'l': return stampAt(numberIn(rest), LeaveErrors);
        case 'h': return stampAt(numberIn(rest), ReportErrors, handler);
        default: return stampAt(numberIn(word));
        }
    }

    std::map<std::string, Function> functions_;
    std::string first_;
    int leaving_ = 0;  // loops that are still to be left
    bool iterating_ = false, returning_ = false;
};

class WrittenProgram : public DebuggedProgram {
protected:
    // i into, o over, u out, r run, tN run to line N of the class that is shown.
    static Hand handFor(const std::string& word) {
        static const std::map<char, int> numbers = {
            {'i', DEBUG_STEP_INTO}, {'o', DEBUG_STEP_OVER}, {'u', DEBUG_STEP_OUT}, {'r', DEBUG_RUN}};
        if (word.front() == 't')
            return [line = numberIn(word.substr(1))](platform::DebugWindow& window) {
                platform::DebugSelect(window, line, true);
                command(window, DEBUG_RUN_TO);
            };
        return
            [number = numbers.at(word.front())](platform::DebugWindow& window) { command(window, number); };
    }
    static void setHands(const std::string& commands) {
        std::istringstream words(commands);
        hands().clear();
        for (std::string word; words >> word;) {
            const int times = word.front() == 't' ? 1 : std::max(numberIn(word.substr(1)), 1);
            for (int i = 0; i < times; ++i) hands().push_back(handFor(word));
        }
    }
    void begin(const std::string& breakpoints, bool step, const std::string& more = {}) {
        settings("breakpoints=" + breakpoints + "\r\nSingleStep=" + (step ? "1" : "0") + "\r\n" + more);
        start();
        std::vector<int> all;
        for (int line = 1; line <= 99; ++line) all.push_back(line);
        for (const char* name : {"A", "B", "C"}) addClass(name, 99, all);
    }
};

}  // namespace tarn
