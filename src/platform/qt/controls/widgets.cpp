// SPDX-License-Identifier: Apache-2.0
//
// Labels, groups, scroll bars and progress bars, the table from a type to its Peer, and what all controls have in common.
// Lists and combo boxes are in rowspeers, grids in gridpeer, buttons and marks in buttonpeers, shapes, icons and images in
// picturepeer, edits and edit windows in textpeers.
#include "platform/qt/controls/widgets.h"

#include "platform/qt/controls/buttonpeers.h"
#include "platform/qt/controls/gridpeer.h"
#include "platform/qt/controls/picturepeer.h"
#include "platform/qt/controls/rowspeers.h"
#include "platform/qt/controls/textpeers.h"
#include "platform/qt/drawing/paintcanvas.h"
#include "platform/qt/drawing/palettes.h"
#include "platform/qt/texts.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QComboBox>
#include <QFrame>
#include <QGroupBox>
#include <QLabel>
#include <QPainter>
#include <QProgressBar>
#include <QScrollBar>
#include <QSignalBlocker>

#include <algorithm>

namespace tarn::platform::qt {

namespace {

class LabelPeer : public Peer {
public:
    LabelPeer(Control& control, QLabel& label) : Peer(control, label), label_(label) {
        label.setTextFormat(Qt::PlainText);
        static constexpr int frames[] = {QFrame::NoFrame, QFrame::Box | QFrame::Plain,
                                         QFrame::Panel | QFrame::Sunken};
        label.setFrameStyle(frames[std::clamp(control.border, 0, 2)]);
    }
    void apply(Property property) override {
        if (property == Property::Caption || property == Property::Position || property == Property::Font ||
            property == Property::Hint)
            show();
    }

private:
    void show() {
        const bool tall = control_->position.h > label_.fontMetrics().height() * 3 / 2;
        label_.setWordWrap(tall);
        static constexpr Qt::Alignment sides[] = {Qt::AlignLeft, Qt::AlignRight, Qt::AlignHCenter};
        label_.setAlignment(sides[std::clamp(control_->alignment, 0, 2)] |
                            (tall ? Qt::AlignTop : Qt::AlignVCenter));
        // Only a mnemonic that leads somewhere is one.
        const bool leads = label_.buddy() != nullptr;
        const QString caption = shown(control_->caption), plain = withoutMnemonic(caption);
        const QString text = leads ? marked(caption) : plain;
        const QString fits = tall ? text : shortened(text, leads ? Qt::TextShowMnemonic : 0);
        label_.setText(fits);
        const bool named = fits == text && !plain.contains(u'&');
        label_.setAccessibleName(named ? QString() : plain);  // else its text names it
        label_.setToolTip(fits != text ? plain : shown(control_->hint));
    }
    // What is too long for the line, as a path may be, loses its middle.
    [[nodiscard]] QString shortened(const QString& text, int flags) const {
        const int room = control_->position.w - 2 * label_.frameWidth();
        if (room <= 0 || text.contains(u'\n')) return text;
        return label_.fontMetrics().elidedText(text, Qt::ElideMiddle, room, flags);
    }
    QLabel& label_;
};

class GroupPeer : public Peer {
public:
    GroupPeer(Control& control, QGroupBox& box) : Peer(control, box), box_(box) {
        box.setAttribute(Qt::WA_TransparentForMouseEvents);
        box.lower();  // what it frames are its siblings
    }
    void apply(Property property) override {
        if (property == Property::Caption) box_.setTitle(marked(shown(control_->caption)));
    }

private:
    QGroupBox& box_;
};

bool isHorizontal(const Control& bar) {
    return bar.alignment == 4 || (bar.alignment != 5 && bar.position.w >= bar.position.h);
}

class ScrollPeer : public Peer {
public:
    ScrollPeer(Control& control, QScrollBar& bar) : Peer(control, bar), bar_(bar) {
        connect(&bar, &QScrollBar::valueChanged, this, [this](int value) {
            if (control_ != nullptr) userValue(*control_, value);
        });
    }
    void apply(Property property) override {
        if (property != Property::Range && property != Property::Value) return;
        const QSignalBlocker quiet(&bar_);
        bar_.setRange(control_->minimum, std::max(control_->minimum, control_->maximum));
        bar_.setPageStep(std::max(1, (control_->maximum - control_->minimum) / 10));
        bar_.setValue(control_->value);
    }

private:
    QScrollBar& bar_;
};

class BorderedBar : public QProgressBar {
public:
    BorderedBar(int border, QWidget* parent) : QProgressBar(parent), border_(border) {}

protected:
    void paintEvent(QPaintEvent* event) override {
        QProgressBar::paintEvent(event);
        QPainter painter(this);
        paintBorder(painter, rect(), palette(), border_);
    }

private:
    int border_;
};

class ProgressPeer : public Peer {
public:
    ProgressPeer(Control& control, QProgressBar& bar) : Peer(control, bar), bar_(bar) {
        bar.setTextVisible(false);
        bar.setOrientation(isHorizontal(control) ? Qt::Horizontal : Qt::Vertical);
    }
    void apply(Property property) override {
        if (property != Property::Range && property != Property::Value) return;
        bar_.setRange(control_->minimum, std::max(control_->minimum, control_->maximum));
        bar_.setValue(
            std::clamp(control_->value, control_->minimum, std::max(control_->minimum, control_->maximum)));
    }

private:
    QProgressBar& bar_;
};

Peer* make(Control& control, QWidget* parent, bool flat) {
    switch (control.type) {
    case Type::Label: return new LabelPeer(control, *new QLabel(parent));
    case Type::Edit:
        return control.multiline != 0 ? makeLinesPeer(control, parent) : makeLinePeer(control, parent);
    case Type::Combobox: return makeComboPeer(control, parent);
    case Type::Iconlist:
        if (control.useTabStops) return makeGridPeer(control, parent);
        [[fallthrough]];
    case Type::Listbox: return makeRowsPeer(control, parent);
    case Type::Pushbutton: return makePushPeer(control, parent);
    case Type::Bitmapbutton: return makeBitmapButtonPeer(control, parent, flat);
    case Type::Checkbox: return makeCheckPeer(control, parent);
    case Type::Radiobutton: return makeRadioPeer(control, parent);
    case Type::Groupbox: return new GroupPeer(control, *new QGroupBox(parent));
    case Type::Scrollbar:
        return new ScrollPeer(control,
                              *new QScrollBar(isHorizontal(control) ? Qt::Horizontal : Qt::Vertical, parent));
    case Type::Progressbar: return new ProgressPeer(control, *new BorderedBar(control.border, parent));
    case Type::Editwindow:
    case Type::Richeditwindow: return makeEditAreaPeer(control, parent);
    default: return makePicturePeer(control, parent);
    }
}

constexpr Property All[] = {
    Property::Caption, Property::Picture, Property::Rows,     Property::ListIndex, Property::Range,
    Property::Value,   Property::Checked, Property::Readonly, Property::MaxLength, Property::Password,
    Property::Flags,   Property::Tokens,  Property::Status,
};

// A text that cannot be edited is there to be read: desktops draw it so faint that it cannot be.
QPalette desktopColours(Type type) {
    QPalette colours;
    if (type != Type::Edit) return colours;
    const QPalette desktop = paletteInForce();
    const QColor paper = desktop.color(QPalette::Disabled, QPalette::Base);
    const QColor ink = desktop.color(QPalette::Active, QPalette::Text);
    constexpr int share = 60;  // of a hundred, the ink's
    const auto mix = [](int a, int b) { return (a * (100 - share) + b * share) / 100; };
    colours.setColor(
        QPalette::Disabled, QPalette::Text,
        QColor(mix(paper.red(), ink.red()), mix(paper.green(), ink.green()), mix(paper.blue(), ink.blue())));
    return colours;
}

}  // namespace

Peer::Peer(Control& control, QWidget& widget) : QObject(&widget), control_(&control), widget_(&widget) {
    widget.setProperty("peer", QVariant::fromValue(static_cast<void*>(this)));
}

Peer* Peer::of(const QWidget& widget) {
    return static_cast<Peer*>(widget.property("peer").value<void*>());
}

Peer* makePeer(Control& control, QWidget* parent, bool flat) {
    Peer* peer = make(control, parent, flat);
    control.widget = peer;
    peer->widget()->setObjectName(shown(control.name));
    if (!control.hint.empty()) peer->widget()->setToolTip(shown(control.hint));
    for (const Property property : All) peer->apply(property);
    return peer;
}

Peer* peerOf(const Control& control) {
    return control.type == Type::Menuitem ? nullptr : static_cast<Peer*>(control.widget);
}

QFont qtFont(const Font& font, const QFont& base) {
    QFont result = base;
    if (!font.name.empty()) result.setFamily(shown(font.name));
    if (font.size > 0) result.setPointSize(font.size);
    result.setBold(font.bold);
    result.setItalic(font.italic);
    return result;
}

void applyBars(QAbstractScrollArea& area, const Control& control) {
    if (control.border == 0) area.setFrameShape(QFrame::NoFrame);
    const auto policy = [&control](int bar) {
        return (control.scrollBars & bar) != 0 ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff;
    };
    area.setHorizontalScrollBarPolicy(policy(1));
    area.setVerticalScrollBarPolicy(policy(2));
}

void applyFont(QWidget& widget, const Font& own, const Font& inherited) {
    const Font& font = own == Font{} ? inherited : own;
    if (font == Font{})
        widget.setFont(QFont());
    else
        widget.setFont(qtFont(font, QApplication::font(&widget)));
}

void applyColours(QWidget& widget, const Control& control) {
    const bool own = isWindowType(control.type);
    // Black on white is what a resource file says that means nothing special; the desktop's colours stand for
    // it.
    const bool plain = control.foreColour == 0 && control.backColour == 0xFFFFFF;
    if ((control.foreColour < 0 && control.backColour < 0) || plain) {
        widget.setPalette(desktopColours(control.type));
        return;
    }
    QPalette palette;  // the rest stays that of the window
    // Controls have a window's colours only where its ground shows through them.
    const auto set = [&](int colour, std::initializer_list<QPalette::ColorRole> roles) {
        if (colour < 0) return;
        palette.setColor(*roles.begin(), colourOf(colour));
        if (!own)
            for (const auto role : roles) palette.setColor(role, colourOf(colour));
    };
    set(control.foreColour, {QPalette::WindowText, QPalette::Text, QPalette::ButtonText});
    set(control.backColour, {QPalette::Window, QPalette::Base, QPalette::Button});
    if (control.type == Type::Progressbar) set(control.foreColour, {QPalette::Highlight});
    widget.setPalette(palette);
    // A shape fills itself, and the place around it stays.
    widget.setAutoFillBackground(control.backColour >= 0 && control.type != Type::Shape);
}

QRect placeOf(const Control& control, const QWidget& widget) {
    const Rect& r = control.position;
    int height = r.h;
    if (qobject_cast<const QComboBox*>(&widget) != nullptr)
        height = std::min(height, widget.sizeHint().height());
    return {r.x, r.y, std::max(r.w, 0), std::max(height, 0)};
}

}  // namespace tarn::platform::qt
