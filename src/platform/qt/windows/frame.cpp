// SPDX-License-Identifier: Apache-2.0
//
//   the frame        which flags a window has; making its edit window and controls, their names for screen readers, the
//                    order of tabs and the colours
//   properties       what the model has changed, brought to the frame or to the widget of a control
//   keys             which control a widget is, and the end of a frame
//
// Where it stands is in frame_position.cpp, coming to the front and the toolkit's events in frame_showing.cpp.
#include "platform/qt/windows/frame_internal.h"

#include "platform/qt/controls/textpeers.h"
#include "platform/qt/controls/widgets.h"
#include "platform/qt/drawing/paintcanvas.h"
#include "platform/qt/drawing/pictures.h"
#include "platform/qt/drawing/surface.h"
#include "platform/qt/texts.h"
#include "platform/qt/windows/menus.h"

#include <QApplication>
#include <QLabel>
#include <QMenuBar>
#include <QTimer>

#include <algorithm>
#include <set>

namespace tarn::platform::qt {

namespace {

// Every frame that lives; a widget's window is looked up here, since a frame has no class name of its own.
std::set<const QWidget*>& frames() {
    static std::set<const QWidget*> all;
    return all;
}

Qt::WindowFlags flagsOf(const Window& window) {
    if (window.borderStyle == 0) return Qt::Window | Qt::FramelessWindowHint;
    Qt::WindowFlags flags =
        Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint;
    if (window.onTop) flags |= Qt::WindowStaysOnTopHint;
    if (window.closeBox) flags |= Qt::WindowCloseButtonHint;
    if (window.borderStyle == 2 && window.maxButton) flags |= Qt::WindowMaximizeButtonHint;
    if (window.borderStyle == 2 && window.minButton) flags |= Qt::WindowMinimizeButtonHint;
    return flags;
}

}  // namespace

bool takesFocus(const Control& control) {
    switch (control.type) {
    case Type::Label:
    case Type::Groupbox:
    case Type::Progressbar:
    case Type::Shape:
    case Type::Icon:
    case Type::Image: return false;
    default: return true;
    }
}

bool staysOnTop() {
    return std::any_of(frames().begin(), frames().end(), [](const QWidget* widget) {
        const Window* const window = static_cast<const Frame*>(widget)->model();
        return window != nullptr && window->onTop && widget->isVisible();
    });
}

Frame* frameOf(const Window& window) {
    if (window.widget == nullptr) return nullptr;
    return static_cast<Frame*>(window.widget);
}

Frame* frameOfWidget(const QWidget* widget) {
    const QWidget* top = widget != nullptr ? widget->window() : nullptr;
    return frames().count(top) != 0 ? static_cast<Frame*>(const_cast<QWidget*>(top)) : nullptr;
}

Frame::Frame(Window& window)
    : QWidget(nullptr, flagsOf(window)), window_(&window), bar_(new QMenuBar(this)),
      client_(new SurfaceWidget(this)) {
    const Flag quiet(applying_);
    frames().insert(this);
    window.widget = this;
    constexpr int calm = 250;  // milliseconds
    calm_.setSingleShot(true);
    calm_.setInterval(calm);
    connect(&calm_, &QTimer::timeout, this, [this] { noteNormal(); });
    setObjectName(shown(window.name.empty() ? window.object.window() : window.name));
    setAttribute(Qt::WA_QuitOnClose, false);
    applyFont(*client_, window.font, {});
    applyColours(window);
    makeControls();
    buildMenu(*bar_, window);
    bar_->setVisible(!window.menuItems.empty());
    applyTitle();
    first_ = window.position;
    assumed_ = knownMargins(window.borderStyle);
    place();
}

Frame::~Frame() {
    frames().erase(this);
}

// The library of the edit window takes long to load, so its control comes with the first showing; until then the
// model holds the text.
void Frame::makeEditor() {
    if (!isEditWindowType(window_->type) || Peer::of(*client_) != nullptr) return;
    const Selection selection = window_->text->selection();
    Peer* peer = makeEditAreaPeer(*window_, client_);
    client_->setProperty("peer", QVariant::fromValue(static_cast<void*>(peer)));
    window_->widget = this;
    for (const Property property :
         {Property::Font, Property::Flags, Property::Tokens, Property::MaxLength, Property::Readonly})
        peer->apply(property);
    window_->text->select(selection.start, selection.length);
    peer->widget()->show();
}

void Frame::makeControls() {
    for (const auto& control : window_->controls) {
        Peer* peer = makePeer(*control, client_, !window_->menuItems.empty());
        applyFont(*peer->widget(), control->font, window_->font);
        applyColours(*control);
        peer->widget()->setEnabled(control->enabled);
        placeControl(*control);
        peer->widget()->setVisible(control->visible);
    }
    nameControls();
    orderTabs();
}

namespace {

bool showsCaption(Type type) {
    switch (type) {
    case Type::Pushbutton:
    case Type::Checkbox:
    case Type::Radiobutton:
    case Type::Groupbox: return true;
    default: return false;
    }
}

QString plainCaption(const Control& control) {
    QString name = withoutMnemonic(shown(control.caption));
    while (name.endsWith(u':') || name.endsWith(u' ')) name.chop(1);
    return name;
}

// What screen readers call a control that shows no caption of its own: the label before it names it, else its
// hint, and its name in the resource file only where there is nothing else.
QString spokenName(const Control& control, const Control* label) {
    if (control.type == Type::Bitmapbutton && !control.hint.empty()) return shown(control.hint);
    if (control.type == Type::Bitmapbutton && !control.caption.empty()) return plainCaption(control);
    if (showsCaption(control.type) && !control.caption.empty()) return plainCaption(control);
    if (label != nullptr && !label->caption.empty()) return plainCaption(*label);
    return shown(control.hint.empty() ? control.name : control.hint);
}

}  // namespace

void Frame::nameControls() {
    const Control* label = nullptr;
    for (const auto& control : window_->controls) {
        Peer* peer = peerOf(*control);
        // A widget that shows its caption is read by it, also when it changes; a label that shows a value is
        // told by the one before it.
        if (control->type == Type::Label) {
            if (label != nullptr) peer->widget()->setAccessibleDescription(plainCaption(*label));
        } else if (control->type == Type::Shape) {
            peer->widget()->setAccessibleName({});  // a line or a frame has nothing to say
        } else if (!showsCaption(control->type) || control->caption.empty()) {
            const QString name = spokenName(*control, label);
            peer->widget()->setAccessibleName(name);
            if (QWidget* inner = peer->focusWidget(); inner != nullptr) inner->setAccessibleName(name);
        } else {
            peer->widget()->setAccessibleName({});  // it may have come without a caption
        }
        // A mnemonic of a label leads to the control behind it.
        if (label != nullptr && takesFocus(*control) && label->caption.find('&') != std::string::npos)
            if (auto* text = qobject_cast<QLabel*>(peerOf(*label)->widget());
                text != nullptr && text->buddy() != peer->focusWidget()) {
                text->setBuddy(peer->focusWidget());
                peerOf(*label)->apply(Property::Caption);  // which shows the mnemonic now
            }
        label = control->type == Type::Label && control->visible ? control.get() : nullptr;
    }
}

void Frame::orderTabs() {
    QWidget* before = nullptr;
    for (const auto& control : window_->controls) {
        QWidget* widget = peerOf(*control)->focusWidget();
        if (!takesFocus(*control)) continue;
        // A picture beside a line of text acts for it, a bar for what it scrolls: both leave the keyboard where it is.
        const bool aside = control->type == Type::Bitmapbutton || control->type == Type::Scrollbar;
        const auto clicked = aside ? Qt::NoFocus : Qt::ClickFocus;
        if (!control->tabStop && control->type != Type::Radiobutton) widget->setFocusPolicy(clicked);
        if (before != nullptr) setTabOrder(before, widget);
        before = widget;
    }
}

void Frame::applyColours(Control& control) {
    const bool own = &control == window_;
    qt::applyColours(own ? *client_ : *peerOf(control)->widget(), control);
}

// ---- properties ----

void Frame::applyTitle() {
    setWindowTitle(shown(window_->caption));
}

void Frame::apply(Property property) {
    const Flag quiet(applying_);
    switch (property) {
    case Property::Caption: applyTitle(); break;
    case Property::Position: place(); break;
    case Property::MinMax:
        applyLimits();
        if (large_ && capped()) maximiseWithin();
        break;
    case Property::State: applyState(); break;
    case Property::Enabled: setEnabled(window_->enabled); break;
    case Property::Visible:
        if (!window_->visible && !window_->shown) QWidget::hide();
        break;
    case Property::Font:
        applyFont(*client_, window_->font, {});
        for (const auto& control : window_->controls) applyTo(*control, Property::Font);
        break;
    case Property::Colour: applyColours(*window_); break;
    case Property::MenuItems: menuChanged(); break;
    case Property::Hint: setAccessibleDescription(shown(window_->hint)); break;
    case Property::Picture: setWindowIcon(iconOf(window_->picture)); break;
    default: break;
    }
    if (Peer* editor = Peer::of(*client_); editor != nullptr) editor->apply(property);
}

void Frame::applyTo(Control& control, Property property) {
    if (control.type == Type::Menuitem) {
        if (property == Property::MenuItems)
            menuChanged();
        else if (!rebuild_)
            updateMenuItem(control);
        return;
    }
    Peer* peer = peerOf(control);
    if (peer == nullptr) return;
    QWidget& widget = *peer->widget();
    switch (property) {
    case Property::Enabled: widget.setEnabled(control.enabled); break;
    case Property::Visible: widget.setVisible(control.visible); break;
    case Property::Position: placeControl(control); break;
    case Property::Font: applyFont(widget, control.font, window_->font); break;
    case Property::Colour: applyColours(control); break;
    case Property::Hint:
        widget.setToolTip(shown(control.hint));
        nameControls();
        break;
    case Property::Focus: peer->focusWidget()->setFocus(Qt::TabFocusReason); break;
    default: break;
    }
    peer->apply(property);
}

void Frame::placeControl(Control& control) {
    Peer* peer = peerOf(control);
    peer->widget()->setGeometry(placeOf(control, *peer->widget()));
    peer->apply(Property::Position);
}

void Frame::menuChanged() {
    if (rebuild_) return;
    rebuild_ = true;
    QTimer::singleShot(0, this, [this] {
        rebuild_ = false;
        if (window_ == nullptr) return;
        // A menu that is open stays as it is until it closes.
        if (QApplication::activePopupWidget() != nullptr) return menuChanged();
        buildMenu(*bar_, *window_);
        layOut();
    });
}

// ---- keys ----

Control* Frame::controlOf(const QWidget* widget) const {
    if (window_ == nullptr) return nullptr;
    for (; widget != nullptr && widget != this; widget = widget->parentWidget())
        for (const auto& control : window_->controls)
            if (const Peer* peer = peerOf(*control); peer != nullptr && peer->widget() == widget)
                return control.get();
    return nullptr;
}

void Frame::release() {
    const Flag quiet(applying_);
    for (const auto& control : window_->controls) {
        if (Peer* peer = peerOf(*control); peer != nullptr) peer->release();
        control->widget = nullptr;
    }
    for (const auto& item : window_->menuItems) item->widget = nullptr;
    if (Peer* editor = Peer::of(*client_); editor != nullptr) editor->release();
    window_->widget = nullptr;
    frames().erase(this);  // what still comes for it, until it is deleted, finds no window
    window_ = nullptr;
}

}  // namespace tarn::platform::qt
