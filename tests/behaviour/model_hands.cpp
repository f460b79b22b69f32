// SPDX-License-Identifier: GPL-3.0-or-later
//
// Questions of the headless view: each waits here until a line of the script answers it.
#include "behaviour/hands.h"

#include "os/clock.h"

namespace tarn {
namespace {

using namespace platform;

class ModelHands : public Hands {
public:
    // Called by the view; the idle function goes on with the script until one of its lines has answered.
    std::string ask(const Question& question) {
        open_ = &question;
        answered_ = false;
        view().loop([this] { return answered_; });
        open_ = nullptr;
        return answer_;
    }

    std::optional<ShownQuestion> question() override {
        if (open_ == nullptr) return std::nullopt;
        return ShownQuestion{open_->title, open_->text, open_->buttons};
    }
    bool answer(const std::string& caption) override {
        for (const std::string& button : open_->buttons) {
            if (button == caption) return give(caption);
        }
        return false;
    }
    bool enter(const std::string& text) override {
        return open_->kind != Question::Kind::Message && give(text);
    }
    bool key(const std::string&) override { return false; }
    bool type(const std::string&) override { return false; }
    bool click(const Object&) override { return false; }
    bool stopTool() override { return pressToolStop(); }
    void endSplash() override {}
    void screenshot(const std::string&) override {}

private:
    const Question* open_ = nullptr;
    bool answered_ = false;
    std::string answer_;
    bool give(const std::string& text) {
        answer_ = text;
        answered_ = true;
        return true;
    }
};

}  // namespace

std::unique_ptr<Hands> makeModelHands() {
    auto hands = std::make_unique<ModelHands>();
    useView(makeHeadlessView([user = hands.get()](const Question& question) { return user->ask(question); }));
    return hands;
}

std::unique_ptr<Hands> makeHands(const std::string& mode) {
    return mode == "model" ? makeModelHands() : makeQtHands(mode == "screen");
}

}  // namespace tarn
