// SPDX-License-Identifier: Apache-2.0
//
// Which view is in force.
#include "platform/model/view.h"

#include "os/paths.h"
#include "os/process.h"

#include <dlfcn.h>
#include <utility>

namespace tarn::platform {

namespace {

std::unique_ptr<View>& current() {
    static auto& one = *new std::unique_ptr<View>;  // a view may be needed until the very end
    return one;
}

bool hasScreen() {
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        if (!os::environment(name).empty()) return true;
    return false;
}

// The folder of the library, or of the program, that this code is in.
std::string ownFolder() {
    Dl_info info{};
    if (::dladdr(reinterpret_cast<const void*>(&hasScreen), &info) == 0 || info.dli_fname == nullptr)
        return "";
    const std::string path = info.dli_fname;
    return os::folderPart(path);
}

// Null if there is no such library, or it is not ours.
std::unique_ptr<View> makeScreenView() {
    void* const library = ::dlopen((ownFolder() + "libtarnwick-qt.so").c_str(), RTLD_NOW | RTLD_GLOBAL);
    if (library == nullptr) return nullptr;
    const auto make = reinterpret_cast<MakeView>(::dlsym(library, "tarn_make_view"));
    return std::unique_ptr<View>(make == nullptr ? nullptr : make());
}

}  // namespace

View& view() {
    std::unique_ptr<View>& one = current();
    if (one == nullptr && hasScreen()) one = makeScreenView();
    if (one == nullptr) one = makeHeadlessView();
    return *one;
}

std::unique_ptr<View> useView(std::unique_ptr<View> view) {
    return std::exchange(current(), std::move(view));
}

}  // namespace tarn::platform
