// SPDX-License-Identifier: Apache-2.0
//
// A view without a screen that notes what is drawn on its windows, one line for each call, with places from the corner of
// the window. All else is what the headless view does.
//
//   line 1 2 3 4 000000        shape 0 1 2 3 4 000000 ffffff      (kind, place and size, fore, back)
//   text 1 2 "words" Serif 8   control 1 2 3 4 NAME TYPE          wipe
#pragma once

#include "platform/model/model.h"
#include "platform/model/view.h"

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace tarn::platform {

class RecordingView : public View {
public:
    std::vector<std::string> calls;
    std::vector<std::string> lists;  // the property lists of the controls drawn
    bool dark = false;

    void load(Window& window) override { base_->load(window); }
    void unload(Window& window) override { base_->unload(window); }
    void show(Window& window) override { base_->show(window); }
    void hide(Window& window) override { base_->hide(window); }
    void changed(Control& control, Property property) override { base_->changed(control, property); }
    void loop(const std::function<bool()>& until) override { base_->loop(until); }
    void pump() override { base_->pump(); }
    void wait(int milliseconds, bool inputEnds) override { base_->wait(milliseconds, inputEnds); }
    void setIdle(std::function<void()> idle) override { base_->setIdle(std::move(idle)); }
    std::string ask(const Question& question) override { return base_->ask(question); }
    int textWidth(const Control& control, std::string_view text) override {
        return base_->textWidth(control, text);
    }
    int textHeight(const Control& control, std::string_view text) override {
        return base_->textHeight(control, text);
    }
    Rect screen() override { return base_->screen(); }
    Desktop desktop() override { return {1, screen(), 32, dark}; }
    int dpi() override { return base_->dpi(); }
    std::unique_ptr<Canvas> canvas(Control&) override { return std::make_unique<Recorder>(*this); }
    void wipe(Control&) override { calls.emplace_back("wipe"); }
    Rect track(Window& window, Track track) override { return base_->track(window, track); }
    Picture measured(std::string_view bytes) override { return base_->measured(bytes); }
    std::string encoded(const std::string& picture, const std::string& extension) override {
        return base_->encoded(picture, extension);
    }
    std::vector<std::string> printers() override { return base_->printers(); }
    PrinterStatus printerStatus(const std::string& printer) override { return base_->printerStatus(printer); }
    Paper paper(const std::string& printer) override { return base_->paper(printer); }
    std::unique_ptr<Canvas> startDocument(const std::string& printer, const std::string& document,
                                          int copies) override {
        return base_->startDocument(printer, document, copies);
    }
    std::string clipboard() override { return base_->clipboard(); }
    void setClipboard(std::string_view text) override { base_->setClipboard(text); }
    void sound() override { base_->sound(); }
    void playSound(const std::string& file) override { base_->playSound(file); }
    void setIcon(const std::string& file) override { base_->setIcon(file); }
    void setBusy(bool busy) override { base_->setBusy(busy); }
    void setTimer(Control& owner, int milliseconds) override { base_->setTimer(owner, milliseconds); }
    bool openUrl(const std::string& url) override { return base_->openUrl(url); }
    void toolProgress(const std::string& text) override { base_->toolProgress(text); }
    bool toolStopPressed() override { return base_->toolStopPressed(); }
    void watch(int descriptor, std::function<void()> ready) override {
        base_->watch(descriptor, std::move(ready));
    }
    void raise(Window& window) override { base_->raise(window); }

private:
    class Recorder : public Canvas {
    public:
        explicit Recorder(RecordingView& view) : view_(view) {}
        void line(int x1, int y1, int x2, int y2, Ink ink) override {
            note("line " + place({x1, y1, x2, y2}) + " " + colour(ink.fore));
        }
        void point(int x, int y, Ink ink) override {
            note("point " + std::to_string(x) + " " + std::to_string(y) + " " + colour(ink.fore));
        }
        void shape(ShapeKind kind, const Rect& rect, Ink ink) override {
            note("shape " + std::to_string(kind) + " " + place(rect) + " " + colour(ink.fore) + " " +
                 colour(ink.back));
        }
        void text(int x, int y, std::string_view line, const Font& font, Ink) override {
            note("text " + std::to_string(x) + " " + std::to_string(y) + " \"" + std::string(line) + "\" " +
                 font.name + " " + std::to_string(font.size));
        }
        void picture(const Rect& rect, const std::string& name) override {
            note("picture " + place(rect) + " " + name);
        }
        void window(int, int, const Window&) override { note("window"); }
        void control(const Rect& rect, std::string_view properties, const Font&) override {
            const auto control = makeLoose(properties);
            view_.lists.emplace_back(properties);
            note(
                "control " + place(rect) +
                (control == nullptr ? "" : " " + control->name + " " + std::string(typeName(control->type))));
        }

    private:
        void note(std::string call) { view_.calls.push_back(std::move(call)); }
        static std::string place(const Rect& r) {
            return std::to_string(r.x) + " " + std::to_string(r.y) + " " + std::to_string(r.w) + " " +
                   std::to_string(r.h);
        }
        static std::string colour(int value) {
            char text[16];
            std::snprintf(text, sizeof text, "%06x", static_cast<unsigned>(value));
            return value < 0 ? "-" : text;
        }
        RecordingView& view_;
    };

    std::unique_ptr<View> base_ = makeHeadlessView();
};

}  // namespace tarn::platform
