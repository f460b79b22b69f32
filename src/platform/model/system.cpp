// SPDX-License-Identifier: Apache-2.0
//
// The objects of the system: screen, printers and clipboard. They are controls without a window, made when
// they are first asked for; a printer keeps its number once it has been listed.
#include "platform/model/access_internal.h"

#include <algorithm>

namespace tarn::platform {

namespace {

// The clipboard's text, which other programs change too.
class ClipboardText : public TextStore {
public:
    std::string text() const override { return view().clipboard(); }
    void setText(std::string_view text) override { view().setClipboard(text); }
    int length() const override { return static_cast<int>(text().size()); }
    Selection selection() const override { return {}; }
    void select(int, int) override {}
    void replaceSelection(std::string_view text) override { setText(text); }
    bool modified() const override { return false; }
    void setModified(bool) override {}
};

std::unique_ptr<Control> makeSystem(const Object& object, Type type, std::string name) {
    auto control = std::make_unique<Control>();
    control->object = object;
    control->type = type;
    control->name = std::move(name);
    if (type == Type::Clipboard) control->text = std::make_unique<ClipboardText>();
    enroll(*control);
    return control;
}

Control* single(const Object& object, Type type) {
    std::unique_ptr<Control>& one = state().system[type];
    if (one == nullptr) one = makeSystem(object, type, object.window());
    return one.get();
}

Control* printerAt(int number) {
    std::vector<std::unique_ptr<Control>>& all = state().printers;
    if (number < 0 || number > static_cast<int>(all.size())) return nullptr;
    if (number > 0) return all[static_cast<std::size_t>(number - 1)].get();
    const std::vector<std::string> names = view().printers();
    return names.empty() ? nullptr : printerAt(printerObject(names.front()).number());
}

}  // namespace

Control* findSystem(const Object& object) {
    const std::string* const name = &object.window();
    if (name == &Sysprinter.window()) return printerAt(object.number());
    if (!object.isWindow()) return nullptr;
    if (name == &Sysscreen.window()) return single(object, Type::Screen);
    return name == &Sysclipboard.window() ? single(object, Type::Clipboard) : nullptr;
}

bool isSystemName(const Object& object) {
    const std::string* const name = &object.window();
    return name == &Sysprinter.window() || name == &Sysscreen.window() || name == &Sysclipboard.window();
}

Object printerObject(const std::string& name) {
    std::vector<std::unique_ptr<Control>>& all = state().printers;
    for (const auto& printer : all)
        if (printer->name == name) return printer->object;
    const Object object(Sysprinter.window(), static_cast<int>(all.size()) + 1);
    return all.emplace_back(makeSystem(object, Type::Printer, name))->object;
}

}  // namespace tarn::platform
