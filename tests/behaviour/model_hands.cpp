// SPDX-License-Identifier: GPL-3.0-or-later
//
// The model mode: no real input.
#include "behaviour/design_places.h"
#include "behaviour/hands.h"
#include "ide/designer/dlgedit.h"
#include "ide/help/helpviewer.h"
#include "ide/shell/windows.h"
#include "platform/model/guides.h"

namespace tarn {
namespace {

class ModelHands : public Hands {
public:
    bool key(const std::string&) override { return false; }
    bool type(const std::string&) override { return false; }
    bool click(const platform::Object&) override { return false; }
    bool mouse(const platform::Object&, int, int, int) override { return false; }
    bool design(const std::string& file, const std::string& dialog) override {
        return OPENDIALOG(file, dialog), true;
    }
    bool point(const std::string& object, const std::string& how) override {
        platform::Point at;
        if (!designPoint(object, false, at)) return false;
        platform::Window& window = *platform::findWindow(DialogDlg);
        if (how == "right") return platform::userInfo(window, at.x, at.y), true;
        platform::userMouseKeys(how == "shift" ? platform::MOUSE_SHIFT : 0);
        platform::userMouseDown(window, at.x, at.y);
        platform::userMouseKeys(0);
        if (how == "2") platform::userDoubleClick(window, at.x, at.y);
        return true;
    }
    bool drag(const std::string& object, bool corner, int dx, int dy) override {
        platform::Point at;
        if (!designPoint(object, corner, at)) return false;
        const platform::Point by = designDistance(dx, dy);
        platform::userDrag(at, {at.x + by.x, at.y + by.y});
        return platform::userMouseDown(*platform::findWindow(DialogDlg), at.x, at.y);
    }
    bool stopTool() override { return platform::pressToolStop(); }
    void endSplash() override {}
    void screenshot(const std::string&) override {}
    bool helpTopic(std::string& topic) override { return topic = asked(), true; }

    // Help without a window: what was asked for is all there is.
    static std::string& asked() {
        static std::string topic = "(nothing)";
        return topic;
    }
};

}  // namespace

std::unique_ptr<Hands> makeHands(const std::string& mode) {
    if (mode != "model") return makeQtHands(mode == "screen");
    platform::useView(platform::makeHeadlessView());
    platform::SetHelpViewer([](const std::string& file, const std::string& topic) {
        if (!file.ends_with(".qch")) return false;
        ModelHands::asked() = topic;
        return true;
    });
    USEBOXHELP();
    return std::make_unique<ModelHands>();
}

}  // namespace tarn
