// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/controls/buttonpeers.h"

#include "platform/model/pictures.h"
#include "platform/qt/drawing/palettes.h"
#include "platform/qt/drawing/pictures.h"
#include "platform/qt/texts.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QStyle>
#include <QStyleOptionButton>
#include <QToolButton>

#include <algorithm>
#include <type_traits>

namespace tarn::platform::qt {

namespace {

bool isOn(const Control& control) {
    return control.checked || control.value != 0;
}

class PushPeer : public Peer {
public:
    PushPeer(Control& control, QPushButton& button) : Peer(control, button), button_(button) {
        button.setAutoDefault(false);
        button.setDefault(control.isDefault);
        connect(&button, &QPushButton::clicked, this, [this] {
            if (control_ != nullptr) userCommand(*control_);
        });
    }
    void apply(Property property) override {
        if (property == Property::Caption) button_.setText(marked(shown(control_->caption)));
        if (property == Property::Picture) button_.setIcon(iconOf(control_->picture));
    }

private:
    QPushButton& button_;
};

// A picture to press. On a toolbar it is flat and its caption only names it.
class BitmapButtonPeer : public Peer {
public:
    BitmapButtonPeer(Control& control, QToolButton& button, bool flat)
        : Peer(control, button), button_(button), flat_(flat) {
        button.setAutoRaise(flat);
        button.setFocusPolicy(flat ? Qt::TabFocus : Qt::StrongFocus);
        connect(&button, &QToolButton::clicked, this, [this] {
            if (control_ != nullptr) userCommand(*control_);
        });
    }
    void apply(Property property) override {
        if (property == Property::Caption || property == Property::Picture) dress();
        if (property == Property::Position || property == Property::Picture) sizeIcon();
    }

private:
    // A drawn face fills the button; an icon is a square in it.
    void sizeIcon() {
        const PictureSource* const source = pictureSource(control_->picture);
        const QSize room(control_->position.w, control_->position.h);
        const int side = std::clamp(std::min(room.width(), room.height()) - 10, 16, 48);
        const bool face = source != nullptr && source->face;
        button_.setIconSize(face ? (room - QSize(6, 6)).expandedTo({16, 16}) : QSize(side, side));
    }
    void dress() {
        const QIcon icon = iconOf(control_->picture);
        button_.setIcon(icon);
        button_.setText(marked(shown(control_->caption)));
        const bool caption = !control_->caption.empty() && !flat_;
        button_.setToolButtonStyle(icon.isNull() ? Qt::ToolButtonTextOnly
                                   : caption     ? Qt::ToolButtonTextBesideIcon
                                                 : Qt::ToolButtonIconOnly);
    }
    QToolButton& button_;
    bool flat_;
};

// The style "fusion" draws the edge of a mark darker than the ground, which on a dark one cannot be seen.
void edgeOnDark(QWidget& widget, const QStyleOptionButton& option, bool round) {
    const QPalette colours = widget.palette();
    if (!isDark(colours) || widget.style()->name() != QStringLiteral("fusion")) return;
    const auto element = round ? QStyle::SE_RadioButtonIndicator : QStyle::SE_CheckBoxIndicator;
    const QRectF mark = widget.style()->subElementRect(element, &option, &widget);
    const QColor ground = colours.color(QPalette::Window), ink = colours.color(QPalette::WindowText);
    QPainter painter(&widget);
    painter.setPen(QColor((ground.red() + ink.red()) / 2, (ground.green() + ink.green()) / 2,
                          (ground.blue() + ink.blue()) / 2));
    if (!round) return painter.drawRect(mark.adjusted(0, 0, -1, -1));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.drawEllipse(mark.adjusted(1, 1, -1, -1));
}

template <class Button>
class EdgedMark : public Button {
public:
    using Button::Button;

protected:
    void paintEvent(QPaintEvent* event) override {
        Button::paintEvent(event);
        QStyleOptionButton option;
        this->initStyleOption(&option);
        edgeOnDark(*this, option, std::is_same_v<Button, QRadioButton>);
    }
};

class CheckPeer : public Peer {
public:
    CheckPeer(Control& control, QAbstractButton& button) : Peer(control, button), button_(button) {
        if (control.alignment == 0) button.setLayoutDirection(Qt::RightToLeft);
        connect(&button, &QAbstractButton::clicked, this, [this](bool on) {
            if (control_ != nullptr) userValue(*control_, on ? 1 : 0);
            if (control_ != nullptr) apply(Property::Checked);  // the model may have decided otherwise
        });
    }
    void apply(Property property) override {
        const QSignalBlocker quiet(&button_);
        if (property == Property::Caption) button_.setText(marked(shown(control_->caption)));
        if (property == Property::Checked || property == Property::Value) button_.setChecked(isOn(*control_));
    }

private:
    QAbstractButton& button_;
};

// Radio buttons of one control array make a group; one without an array stands for itself.
class RadioPeer : public Peer {
public:
    RadioPeer(Control& control, QRadioButton& button) : Peer(control, button), button_(button) {
        button.setAutoExclusive(false);
        if (control.alignment == 0) button.setLayoutDirection(Qt::RightToLeft);
        if (!control.array.empty()) join(button.parentWidget());
        connect(&button, &QRadioButton::clicked, this, [this] {
            if (control_ != nullptr && !isOn(*control_)) userValue(*control_, 1);
            if (control_ != nullptr) settle();
        });
    }
    void apply(Property property) override {
        if (property == Property::Caption) button_.setText(marked(shown(control_->caption)));
        if (property == Property::Checked || property == Property::Value) settle();
    }

private:
    void join(QWidget* parent) {
        const QString name = QStringLiteral("radio ") + shown(control_->array).toLower();
        group_ = parent->findChild<QButtonGroup*>(name, Qt::FindDirectChildrenOnly);
        if (group_ == nullptr) {
            group_ = new QButtonGroup(parent);
            group_->setObjectName(name);
        }
        group_->addButton(&button_);
    }
    // All buttons of the group as the model has them; a group without a set button is possible.
    void settle() {
        if (group_ == nullptr) return set(button_, isOn(*control_));
        group_->setExclusive(false);
        for (QAbstractButton* button : group_->buttons())
            if (const auto* peer = dynamic_cast<RadioPeer*>(Peer::of(*button)); peer != nullptr)
                set(*button, isOn(peer->control()));
        group_->setExclusive(true);
    }
    static void set(QAbstractButton& button, bool on) {
        const QSignalBlocker quiet(&button);
        button.setChecked(on);
    }
    QRadioButton& button_;
    QButtonGroup* group_ = nullptr;
};

}  // namespace

Peer* makePushPeer(Control& control, QWidget* parent) {
    return new PushPeer(control, *new QPushButton(parent));
}

Peer* makeBitmapButtonPeer(Control& control, QWidget* parent, bool flat) {
    return new BitmapButtonPeer(control, *new QToolButton(parent), flat);
}

Peer* makeCheckPeer(Control& control, QWidget* parent) {
    return new CheckPeer(control, *new EdgedMark<QCheckBox>(parent));
}

Peer* makeRadioPeer(Control& control, QWidget* parent) {
    return new RadioPeer(control, *new EdgedMark<QRadioButton>(parent));
}

}  // namespace tarn::platform::qt
