// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/windows/menus.h"

#include "platform/qt/drawing/pictures.h"
#include "platform/qt/input/keys.h"
#include "platform/qt/texts.h"

#include <QAction>
#include <QFontMetrics>
#include <QGuiApplication>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QScreen>

#include <vector>

namespace tarn::platform::qt {

namespace {

bool isSeparator(const Control& item) {
    return item.caption.find_first_not_of('-') == std::string::npos;
}

// A digit with its mnemonic, a blank and a name, as in a list of recent files: the name shows as it is.
bool isNumbered(const QString& caption) {
    return caption.size() > 3 && caption[0] == u'&' && caption[1].isDigit() && caption[2] == u' ';
}

// A name of a file may be longer than the screen is wide; both its ends tell more than its middle.
QString menuText(const QAction& action, const QString& caption) {
    const QScreen* screen = QGuiApplication::primaryScreen();
    const int room = screen != nullptr ? screen->availableSize().width() / 2 : 600;
    const QFontMetrics metrics(action.font());
    if (!isNumbered(caption))
        return metrics.elidedText(marked(caption), Qt::ElideMiddle, room, Qt::TextShowMnemonic);
    QString name = metrics.elidedText(caption.mid(3), Qt::ElideMiddle, room);
    for (QChar& c : name)
        if (c < u' ') c = u' ';  // a tab would part a shortcut off
    return caption.left(3) + name.replace(u'&', QStringLiteral("&&"));
}

void apply(QAction& action, const Control& item) {
    const QString caption = shown(item.caption);
    QString text = menuText(action, caption);
    action.setToolTip(text.contains(u'\u2026') ? caption : QString());
    if (const QString key = shortcutText(item.shortcut); !key.isEmpty() && !text.contains(u'\t'))
        text += u'\t' + key;
    if (action.text() != text) action.setText(text);
    action.setCheckable(item.checked);
    action.setChecked(item.checked);
    action.setEnabled(item.enabled);
    action.setVisible(item.visible);
    if (!item.picture.empty()) action.setIcon(iconOf(item.picture));
    if (!item.hint.empty()) action.setStatusTip(shown(item.hint));
}

// The control of an action may be gone by the time it is triggered, so the action knows its name only.
void pick(const Object& object) {
    Control* item = findControl(object);
    if (item == nullptr || !item->enabled) return;
    userCommand(*item);
    if (Control* still = findControl(object); still != nullptr && still->widget != nullptr)
        updateMenuItem(*still);
}

QAction* addItem(QMenu& menu, Control& item) {
    if (isSeparator(item)) {
        QAction* line = menu.addSeparator();
        line->setVisible(item.visible);
        return line;
    }
    QAction* action = menu.addAction(QString());
    QObject::connect(action, &QAction::triggered, action, [object = item.object] { pick(object); });
    return action;
}

}  // namespace

void buildMenu(QMenuBar& bar, Window& window) {
    for (QAction* old : bar.actions()) {
        bar.removeAction(old);
        if (QMenu* menu = old->menu(); menu != nullptr)
            menu->deleteLater();
        else
            old->deleteLater();
    }
    std::vector<QMenu*> open;  // the menu at each level
    const auto& items = window.menuItems;
    for (const auto& item : items) item->widget = nullptr;
    for (std::size_t i = 0; i < items.size(); ++i) {
        Control& item = *items[i];
        const auto level = static_cast<std::size_t>(std::max(item.level, 1));
        const bool parent = level == 1 || (i + 1 < items.size() && items[i + 1]->level > item.level);
        open.resize(std::min(open.size(), level - 1));
        QAction* action = nullptr;
        if (parent) {
            auto* menu = new QMenu(&bar);
            menu->setToolTipsVisible(true);
            action = open.empty() ? bar.addMenu(menu) : open.back()->addMenu(menu);
            open.push_back(menu);
        } else if (!open.empty()) {
            action = addItem(*open.back(), item);
        }
        if (action == nullptr) continue;
        item.widget = action;
        if (!action->isSeparator()) apply(*action, item);
    }
    bar.setVisible(!items.empty());
}

void updateMenuItem(Control& item) {
    if (auto* action = static_cast<QAction*>(item.widget); action != nullptr) {
        if (action->isSeparator() == isSeparator(item) && !action->isSeparator())
            apply(*action, item);
        else
            action->setVisible(item.visible);
    }
}

Control* findShortcut(Window& window, int shortcut) {
    if (shortcut == 0) return nullptr;
    for (const auto& item : window.menuItems)
        if (item->shortcut == shortcut && item->enabled && item->visible) return item.get();
    return nullptr;
}

}  // namespace tarn::platform::qt
