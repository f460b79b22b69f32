// SPDX-License-Identifier: Apache-2.0
//
//   the frame        which flags and margins a window has; making its edit window and controls, their names for screen
//                    readers, the order of tabs and the colours
//   properties       what the model has changed, brought to the frame or to the widget of a control
//   position         limits, places in the units of the model, states, and telling the model where the frame is
//   showing          modality, coming to the front, the first focus, and the toolkit's events
//   keys             which control a widget is, and the end of a frame
#include "platform/qt/windows/frame.h"

#include "platform/qt/controls/textpeers.h"
#include "platform/qt/controls/widgets.h"
#include "platform/qt/drawing/paintcanvas.h"
#include "platform/qt/drawing/pictures.h"
#include "platform/qt/drawing/surface.h"
#include "platform/qt/texts.h"
#include "platform/qt/windows/menus.h"

#include <QApplication>
#include <QCloseEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QStyle>
#include <QTimer>
#include <QWindow>

#include <algorithm>
#include <set>

namespace tarn::platform::qt {

namespace {

// Every frame that lives; a widget's window is looked up here, since a frame has no class name of its own.
std::set<const QWidget*>& frames() {
    static std::set<const QWidget*> all;
    return all;
}

class Flag {  // sets a flag for a scope
public:
    explicit Flag(bool& flag) : flag_(flag), before_(flag) { flag = true; }
    ~Flag() { flag_ = before_; }
    Flag(const Flag&) = delete;
    Flag& operator=(const Flag&) = delete;

private:
    bool& flag_;
    bool before_;
};

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

bool isButton(Type type) {
    return type == Type::Pushbutton || type == Type::Bitmapbutton;
}

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

// How wide frames are, by border style; learnt from the first window of a kind that the window system has
// framed.
QMargins& knownMargins(int borderStyle) {
    static QMargins known[3];
    return known[std::clamp(borderStyle, 0, 2)];
}

// Before a window of that border has shown its frame, another's tells best.
QMargins likelyMargins(int borderStyle) {
    QMargins margins = knownMargins(borderStyle);
    for (int other = 2; margins.isNull() && borderStyle != 0 && other > 0; --other)
        margins = knownMargins(other);
    return margins;
}

}  // namespace

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
            if (auto* text = qobject_cast<QLabel*>(peerOf(*label)->widget()); text != nullptr)
                text->setBuddy(peer->focusWidget());
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

// ---- position ----

int Frame::barHeight() const {
    if (window_ == nullptr || window_->menuItems.empty()) return 0;
    const int height = bar_->heightForWidth(std::max(width(), 1));
    return height > 0 ? height : bar_->sizeHint().height();
}

Rect Frame::extents() const {
    QMargins margins = assumed_;
    if (windowHandle() != nullptr && isVisible()) margins = windowHandle()->frameMargins();
    const int bar = barHeight();
    return {margins.left(), margins.top() + bar, margins.left() + margins.right(),
            margins.top() + margins.bottom() + bar};
}

bool Frame::capped() const {
    return window_->maximum_.w > 0 && window_->maximum_.h > 0;
}

void Frame::applyLimits() {
    const Rect &low = window_->minimum_, &high = window_->maximum_;
    const int bar = barHeight();
    if (window_->borderStyle != 2) return;
    setMinimumSize(std::max(low.w, 0), low.h > 0 ? low.h + bar : 0);
    setMaximumSize(high.w > 0 ? std::max(high.w, low.w) : QWIDGETSIZE_MAX,
                   high.h > 0 ? std::max(high.h, low.h) + bar : QWIDGETSIZE_MAX);
}

void Frame::place() {
    if (window_->state != 0 && seen_) return;
    applyLimits();
    const Rect margins = extents();
    const Rect& frame = window_->position;
    const int bar = barHeight();
    const QSize size(std::max(frame.w - margins.w, 1), std::max(frame.h - margins.h, 0) + bar);
    if (window_->borderStyle == 2)
        resize(size);
    else
        setFixedSize(size);
    move(frame.x, frame.y);
    layOut();
}

void Frame::layOut() {
    if (window_ == nullptr) return;
    const int bar = barHeight();
    bar_->setGeometry(0, 0, width(), bar);
    client_->setGeometry(0, bar, width(), std::max(height() - bar, 0));
    if (const Peer* editor = Peer::of(*client_); editor != nullptr)
        editor->widget()->setGeometry(client_->rect());
}

// The frame counts too: its lower edge has to stay on the screen. It is the usual one, not that of a window that
// the window system has just maximised.
QSize Frame::largestSize() const {
    const Rect& to = window_->maximum_;
    const QRect room = screen()->availableGeometry();
    const int bar = barHeight();
    const int width = room.right() + 1 - to.x - assumed_.left() - assumed_.right();
    const int height = room.bottom() + 1 - to.y - assumed_.top() - assumed_.bottom() - bar;
    return {std::min(to.w, width), std::min(to.h, height) + bar};
}

void Frame::maximiseWithin() {
    const Flag quiet(applying_);
    if (!large_) normal_ = geometry();
    large_ = true;
    showNormal();
    resize(largestSize());
    move(window_->maximum_.x, window_->maximum_.y);
    // A window system that has just taken the whole screen may place the window by the frame it had there.
    for (const int milliseconds : {100, 400})
        QTimer::singleShot(milliseconds, this, [this] { settleLarge(); });
}

void Frame::settleLarge() {
    if (window_ == nullptr || !large_ || !capped() || isMaximized()) return;
    const Flag quiet(applying_);
    if (size() != largestSize()) resize(largestSize());
    const QPoint corner(window_->maximum_.x, window_->maximum_.y);
    if (frameGeometry().topLeft() != corner) move(corner);
}

void Frame::applyState() {
    const int state = window_->state;
    if (state == 2 && capped()) {
        if (isVisible()) maximiseWithin();  // else when it is brought up
        return;
    }
    if (state == 0 && large_) {
        large_ = false;
        setGeometry(normal_);
    }
    if (!seen_) return;
    const Qt::WindowStates wanted = state == 1   ? Qt::WindowMinimized
                                    : state == 2 ? Qt::WindowMaximized
                                                 : Qt::WindowNoState;
    if (isVisible()) setWindowState((windowState() & ~(Qt::WindowMinimized | Qt::WindowMaximized)) | wanted);
}

void Frame::report() {
    if (window_ == nullptr || applying_ || !isVisible() || window_->closing) return;
    // Until the frame has been seen, what the widget tells is not the size of the window.
    const QMargins margins = windowHandle() != nullptr ? windowHandle()->frameMargins() : assumed_;
    if (margins.isNull() && !assumed_.isNull()) return;  // settle() will look again
    if (margins != assumed_ && !isMaximized()) return settle();
    const int state = isMinimized() ? 1 : isMaximized() || large_ ? 2 : 0;
    const QRect frame = frameGeometry();
    const Rect now =
        state == 1 ? window_->position : Rect{frame.x(), frame.y(), frame.width(), frame.height()};
    if (now == window_->position && state == window_->state) return;
    userMoved(*window_, now, state);
}

// The frame is another than was thought, so either the frame or the area inside it is no longer as large as it was given.
// Where the program gave the size of the client area, the frame follows, since the controls were measured for what is inside;
// where it gave the place of the frame, that stays. A window with a menu keeps its frame in both cases: others are placed
// below it, and it would grow over them. `keepsClient`: none of that counts, the client area stays.
void Frame::takeMargins(const QMargins& margins, bool keepsClient) {
    const QMargins news = margins - assumed_;
    const bool grows = window_->menuItems.empty();
    if (keepsClient || (grows && window_->clientWide)) window_->position.w += news.left() + news.right();
    if (keepsClient || (grows && window_->clientHigh)) window_->position.h += news.top() + news.bottom();
    assumed_ = margins;
}

// The width of the frame is known only once the window system has drawn it. A window as its resources made it, and one whose
// size the user cannot change, keeps its client area.
void Frame::settle() {
    if (window_ == nullptr || windowHandle() == nullptr || !isVisible()) return;
    if (isMaximized()) return report();  // with another frame, or none
    const QMargins margins = windowHandle()->frameMargins();
    const bool news = margins != assumed_;
    const QSize before(window_->position.w - assumed_.left() - assumed_.right(),
                       window_->position.h - assumed_.top() - assumed_.bottom() - barHeight());
    knownMargins(window_->borderStyle) = margins;
    if (news && window_->state == 0 && !isMaximized() && !large_) {
        const Flag quiet(applying_);
        takeMargins(margins, before == QSize(first_.w, first_.h) || window_->borderStyle != 2);
        const bool dragged = size() != QSize(before.width(), before.height() + barHeight());
        if (!dragged) place();  // else the user has sized it meanwhile, and the model is told below
    }
    assumed_ = margins;
    report();
}

// ---- showing ----

// What belonged to this window when it was shown last may be what it is to belong to now; the toolkit never comes to the
// end of such a ring.
void Frame::leaveRing() {
    if (isVisible()) return;
    for (QWindow* const other : QGuiApplication::allWindows())
        if (other->transientParent() == windowHandle()) other->setTransientParent(nullptr);
}

void Frame::applyModality() {
    const Qt::WindowModality wanted = window_->modal ? Qt::ApplicationModal : Qt::NonModal;
    if (windowModality() != wanted) {
        if (isVisible()) hide();  // the toolkit takes a new modality only while a window is hidden
        setWindowModality(wanted);
    }
    const bool onTop = window_->onTop || (window_->modal && staysOnTop());
    if (!isVisible() && onTop != windowFlags().testFlag(Qt::WindowStaysOnTopHint))
        setWindowFlag(Qt::WindowStaysOnTopHint, onTop);
    Frame* below = frameOfWidget(QApplication::activeWindow());
    winId();
    leaveRing();
    if (window_->owned && !window_->modal)
        if (const Window* main = findWindow(Object("Main")); main != nullptr) below = frameOf(*main);
    const bool owned = (window_->modal || window_->owned) && below != nullptr && below != this;
    windowHandle()->setTransientParent(owned ? below->windowHandle() : nullptr);
    if (!window_->modal || seen_ || window_->position.x != 0 || window_->position.y != 0) return;
    // A dialog that says nothing of its place opens over the window it belongs to.
    const QRect over = below != nullptr ? below->frameGeometry() : screen()->availableGeometry();
    QRect mine(QPoint(), size());
    mine.moveCenter(over.center());
    // What is placed is the area inside the frame, whose title has to stay on the screen.
    const QRect room = screen()->availableGeometry().marginsRemoved(likelyMargins(window_->borderStyle));
    mine.moveLeft(std::clamp(mine.left(), room.left(), std::max(room.left(), room.right() - mine.width())));
    mine.moveTop(std::clamp(mine.top(), room.top(), std::max(room.top(), room.bottom() - mine.height())));
    window_->position.x = mine.x();
    window_->position.y = mine.y();
    move(mine.topLeft());
}

void Frame::bringUp() {
    const bool first = !isVisible();
    {
        const Flag quiet(applying_);
        if (!seen_ && assumed_ != knownMargins(window_->borderStyle)) {
            takeMargins(knownMargins(window_->borderStyle), false);
            if (window_->position != first_) place();
        }
        makeEditor();
        layOut();
        applyModality();
        if (window_->state == 1 && first) window_->state = 0;
        if (isMinimized()) showNormal();
        if (window_->state == 2 && !capped() && first)
            showMaximized();
        else
            show();
        seen_ = true;
        if (window_->state == 2 && capped() && !large_) maximiseWithin();
    }
    raise();
    activateWindow();
    if (!first) return;
    nameControls();  // the program may have filled its labels since it loaded the window
    focusFirst();
}

void Frame::focusFirst() {
    if (Peer* editor = Peer::of(*client_); editor != nullptr) return editor->focusWidget()->setFocus();
    if (focusWidget() != nullptr && focusWidget() != this) return;
    for (const auto& control : window_->controls) {
        if (!control->visible || !control->enabled || !control->tabStop || !takesFocus(*control)) continue;
        if (control->type == Type::Radiobutton && control->value == 0 && !control->checked) continue;
        if (!window_->menuItems.empty() && isButton(control->type)) continue;
        QWidget* widget = peerOf(*control)->focusWidget();
        widget->setFocus(Qt::TabFocusReason);
        return;
    }
    setFocus();
}

void Frame::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    layOut();
    // The window system tells the width of the frame in its own time, and not always with an event.
    for (const int milliseconds : {60, 250, 1000})
        QTimer::singleShot(milliseconds, this, [this] { settle(); });
}

void Frame::closeEvent(QCloseEvent* event) {
    event->ignore();  // the model decides, and hides or destroys the frame itself
    if (window_ == nullptr || !takesInput(*window_)) return;
    const QPointer<Frame> self(this);
    userClose(*window_);
    // A desktop that ends its session asks each window, and takes a refusal as a wish to stay.
    if (self.isNull() || self->window_ == nullptr || !self->window_->shown) event->accept();
}

void Frame::moveEvent(QMoveEvent* event) {
    QWidget::moveEvent(event);
    report();
}

void Frame::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    layOut();
    report();
}

// What a program has drawn stays in the old colours. It hears what it draws again for at another size.
void Frame::coloursChanged() {
    if (!isVisible() || !client_->isDrawnOn()) return;
    QTimer::singleShot(0, this, [this] {
        if (window_ != nullptr) userColours(*window_);
    });
}

void Frame::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (window_ != nullptr && event->type() == QEvent::PaletteChange) {
        for (const auto& control : window_->controls)
            if (control->type == Type::Edit && peerOf(*control) != nullptr) applyColours(*control);
        coloursChanged();
    }
    if (window_ == nullptr || event->type() != QEvent::WindowStateChange || applying_) return;
    if (!isMaximized() || !capped()) return report();
    // The window system has taken the whole screen: shrink to the largest position, or go back from it.
    QTimer::singleShot(0, this, [this] {
        if (window_ == nullptr || !isMaximized()) return;
        if (large_) {
            const Flag quiet(applying_);
            large_ = false;
            showNormal();
            setGeometry(normal_);
        } else {
            maximiseWithin();
        }
        report();
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
