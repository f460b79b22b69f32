// SPDX-License-Identifier: Apache-2.0
//
// What holds for every window of the environment, read off its resource files and off the widgets: each control
// has a name that a screen reader can speak, and no letter leads to two places.
#include "os/files.h"
#include "platform/model/model.h"
#include "support/places.h"
#include "ui/window_fixture.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QLabel>
#include <QWidget>

#include <cctype>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace tarn::platform {

namespace {

// The windows of all resource files of the sources.
std::vector<std::string> windowNames() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(SOURCE_DIR "/src")) {
        if (entry.path().extension() != ".rc") continue;
        std::string text, line;
        os::readFile(entry.path().string(), text);
        for (std::istringstream lines(text); std::getline(lines, line);) {
            std::istringstream words(line);
            std::string name, kind;
            if (line.empty() || line[0] == ' ' || !(words >> name >> kind)) continue;
            if (kind == "DIALOG" || kind == "EDITWINDOW") names.push_back(name);
        }
    }
    return names;
}

// The letter behind a single "&"; 0 if there is none.
char mnemonicOf(const std::string& caption) {
    for (std::size_t i = 0; i + 1 < caption.size(); ++i) {
        if (caption[i] != '&') continue;
        if (caption[i + 1] != '&')
            return static_cast<char>(std::toupper(static_cast<unsigned char>(caption[i + 1])));
        ++i;
    }
    return 0;
}

class Names : public WindowTest, public ::testing::WithParamInterface<std::string> {
protected:
    void SetUp() override {
        SetApplicationResources(BINARY_DIR "/ide.rcx");
        ASSERT_EQ(Load(window), Ok) << GetParam();
        Show(window, false);
        settle();
    }
    static void add(std::map<char, std::string>& seen, const Control& control) {
        const char letter = mnemonicOf(control.caption);
        if (letter == 0) return;
        const auto [place, first] = seen.emplace(letter, control.name);
        EXPECT_TRUE(first) << letter << " leads to " << place->second << " and to " << control.name;
    }
    QWidget* top() const { return shownWindow(GetParam()); }
    static std::string spoken(QWidget* widget) {
        const QAccessibleInterface* face = QAccessible::queryAccessibleInterface(widget);
        return face != nullptr ? face->text(QAccessible::Name).toStdString() : std::string();
    }

    const Object window{GetParam()};
};

TEST_P(Names, NoLetterLeadsToTwoControls) {
    std::map<char, std::string> seen;
    for (const auto& control : findWindow(window)->controls)
        if (control->visible) add(seen, *control);
}

TEST_P(Names, NoLetterLeadsToTwoItemsOfAMenu) {
    std::map<const Control*, std::map<char, std::string>> seen;  // by the item whose menu it is
    std::vector<const Control*> above{nullptr};
    for (const auto& item : findWindow(window)->menuItems) {
        const auto level = static_cast<std::size_t>(std::max(item->level, 1));
        above.resize(std::min(above.size(), level));
        add(seen[above.back()], *item);
        above.push_back(item.get());
    }
}

TEST_P(Names, EveryControlHasANameToBeSpoken) {
    ASSERT_NE(top(), nullptr);
    const Control* before = nullptr;
    for (const auto& control : findWindow(window)->controls) {
        auto* widget = top()->findChild<QWidget*>(QString::fromStdString(control->name));
        ASSERT_NE(widget, nullptr) << control->name;
        // What stands behind a label that is filled when the window is used gets its name then.
        const auto isBlank = [](const Control& one) {
            return one.type == Type::Label && one.caption.empty();
        };
        const bool named = isBlank(*control) || (before != nullptr && isBlank(*before));
        before = control.get();
        if (!control->visible || named || control->type == Type::Shape) continue;
        EXPECT_NE(spoken(widget), "") << control->name;
        EXPECT_NE(spoken(widget), control->name) << "nobody knows what that is";
    }
}

TEST_P(Names, ALabelThatGetsAValueSpeaksTheValue) {
    for (const auto& control : findWindow(window)->controls) {
        if (!control->visible || control->type != Type::Label || !control->caption.empty()) continue;
        SetCaption(control->object, "/some/where & else");
        auto* widget = top()->findChild<QLabel*>(QString::fromStdString(control->name));
        EXPECT_EQ(spoken(widget), "/some/where & else") << control->name;
    }
}

TEST_P(Names, TheWindowIsAWindowOrADialog) {
    const QAccessible::Role role = QAccessible::queryAccessibleInterface(top())->role();
    EXPECT_TRUE(role == QAccessible::Window || role == QAccessible::Dialog) << role;
}

INSTANTIATE_TEST_SUITE_P(All, Names, ::testing::ValuesIn(windowNames()),
                         [](const auto& info) { return info.param; });

TEST(WindowNames, AllResourceFilesAreRead) {
    const std::vector<std::string> names = windowNames();
    EXPECT_GE(names.size(), 7U);
    EXPECT_EQ(std::set<std::string>(names.begin(), names.end()).size(), names.size());
}

}  // namespace

}  // namespace tarn::platform
