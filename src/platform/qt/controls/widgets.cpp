// SPDX-License-Identifier: Apache-2.0
//
// The widgets of controls, a Peer for each kind, in this order: lists and combo boxes, labels, push buttons, bitmap
// buttons, check boxes and radio buttons, groups, scroll bars, progress bars. At the end stands the table from a type to
// its Peer. Grids are in gridpeer, shapes, icons and images in picturepeer, edits and edit windows in textpeers.
#include "platform/qt/controls/widgets.h"

#include "platform/model/pictures.h"
#include "platform/qt/controls/gridpeer.h"
#include "platform/qt/controls/markedrows.h"
#include "platform/qt/controls/picturepeer.h"
#include "platform/qt/controls/rowsview.h"
#include "platform/qt/controls/textpeers.h"
#include "platform/qt/drawing/paintcanvas.h"
#include "platform/qt/drawing/palettes.h"
#include "platform/qt/drawing/pictures.h"
#include "platform/qt/texts.h"

#include <QAbstractListModel>
#include <QAbstractScrollArea>
#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QFrame>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMouseEvent>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <iterator>
#include <numeric>

namespace tarn::platform::qt {

namespace {

// The rows of a control, read where they stand.
class RowModel : public QAbstractListModel {
public:
    RowModel(Control& control, QObject* parent) : QAbstractListModel(parent), control_(&control) {}
    int rowCount(const QModelIndex& parent = {}) const override { return parent.isValid() ? 0 : count_; }
    QVariant data(const QModelIndex& index, int role) const override {
        const auto row = static_cast<std::size_t>(index.row());
        if (!index.isValid() || control_ == nullptr || row >= control_->rows.size()) return {};
        const std::string& text = control_->rows[row].text;
        const bool marked =
            control_->type == Type::Iconlist && text.find(char(BoldMark)) != std::string::npos;
        if (role == Qt::DisplayRole || role == Qt::EditRole)
            return marked ? shown(text).remove(QChar(BoldMark)) : shown(text);
        if (role == MarkedTextRole && marked) return shown(text);
        if (role == Qt::DecorationRole && !control_->rows[row].picture.empty())
            return iconOf(control_->rows[row].picture);
        return {};
    }
    // The rows with the longest texts, at most so many.
    std::vector<int> longest(int most) const {
        std::vector<int> rows(control_ == nullptr ? 0 : control_->rows.size());
        std::iota(rows.begin(), rows.end(), 0);
        const auto middle = rows.begin() + std::min<std::ptrdiff_t>(most, std::ssize(rows));
        std::nth_element(rows.begin(), middle, rows.end(), [this](int a, int b) {
            const auto length = [this](int row) {
                return control_->rows[static_cast<std::size_t>(row)].text.size();
            };
            return length(a) > length(b);
        });
        rows.erase(middle, rows.end());
        return rows;
    }
    void refresh() {
        beginResetModel();
        count_ = static_cast<int>(control_->rows.size());
        endResetModel();
    }
    void detach() {
        control_ = nullptr;
        beginResetModel();
        count_ = 0;
        endResetModel();
    }

private:
    Control* control_;
    int count_ = 0;
};

bool isOn(const Control& control) {
    return control.checked || control.value != 0;
}

// Finishes a row's choice: reports it only if it is news to the model.
void reportRow(Control& control, int row) {
    if (row != control.listIndex) userRow(control, row);
}

class RowsView : public RowsViewOf<QListView> {
public:
    explicit RowsView(QWidget* parent) : RowsViewOf(parent) { setUniformItemSizes(true); }
};

// Gathers the changes of the rows: a program that adds thousands of them has them measured once.
class Refresher : public QTimer {
public:
    Refresher(QObject* parent, std::function<void()> refresh) : QTimer(parent), refresh_(std::move(refresh)) {
        setSingleShot(true);
        setInterval(0);
        callOnTimeout(this, refresh_);
    }
    // A running timer that is started anew costs more than the row.
    void soon() {
        if (!isActive()) start();
    }
    void now() {
        if (!isActive()) return;
        stop();
        refresh_();
    }

private:
    std::function<void()> refresh_;
};

class RowsPeer : public Peer {
public:
    RowsPeer(Control& control, RowsView& list)
        : Peer(control, list), list_(list), rows_(new RowModel(control, &list)) {
        list.setModel(rows_);
        applyBars(list, control);
        // The bar goes by the widest row, so each of them has to be measured.
        list.setUniformItemSizes((control.scrollBars & 1) == 0);
        list.refreshed = [this] { late_->now(); };
        if (control.type == Type::Iconlist) dressIcons();
        list.doubleClicked = [this](QPoint at) {
            at = inWindow(*list_.viewport(), at);
            if (control_ != nullptr) userDoubleClick(*control_, at.x(), at.y());
        };
        // The focus alone makes a row current, but only a choice selects it.
        connect(list.selectionModel(), &QItemSelectionModel::selectionChanged, this,
                [this](const QItemSelection& now) {
                    if (!quiet_ && control_ != nullptr && !now.isEmpty())
                        reportRow(*control_, now.first().top() + 1);
                });
    }

    void apply(Property property) override {
        if (property == Property::Rows) late_->soon();
        if (property == Property::ListIndex && !late_->isActive()) choose();
    }

    void catchUp() override { late_->now(); }
    void letGo() override {
        quiet_ = true;
        late_->stop();
        rows_->detach();
    }

private:
    // A picture that is wider than it is high, such as one that begins with the line of a tree, keeps its proportions.
    void dressIcons() {
        auto* const drawing = new MarkedRows(&list_);
        drawing->longest = [this] { return rows_->longest(Measured); };
        list_.setIconSize({60, 20});
        list_.setItemDelegate(drawing);
        list_.setUniformItemSizes(true);
    }
    void choose() {
        quiet_ = true;
        const QModelIndex row = rows_->index(control_->listIndex - 1);
        if (control_->listIndex > 0)
            list_.setCurrentIndex(row);
        else
            list_.selectionModel()->clear();
        quiet_ = false;
    }
    void refreshInPlace() {
        quiet_ = true;
        const int top = list_.verticalScrollBar()->value();
        rows_->refresh();
        list_.verticalScrollBar()->setValue(top);
        choose();
    }

    static constexpr int Measured = 32;  // rows whose width is looked at

    RowsView& list_;
    RowModel* rows_;
    Refresher* late_ = new Refresher(this, [this] { refreshInPlace(); });
    bool quiet_ = false;
};

// Style 1 is a line with a list to drop down, style 2 the list alone.
class DropPeer : public Peer {
public:
    DropPeer(Control& control, QComboBox& box)
        : Peer(control, box), box_(box), rows_(new RowModel(control, &box)) {
        box.setEditable(control.comboStyle != 2);
        box.setInsertPolicy(QComboBox::NoInsert);
        box.setModel(rows_);
        if (box.isEditable()) {
            box.setCompleter(nullptr);
            takeStore(control, makeLineStore(*box.lineEdit()));
            connect(box.lineEdit(), &QLineEdit::textEdited, this, [this] {
                if (control_ != nullptr) userChange(*control_);
            });
        }
        connect(&box, &QComboBox::activated, this, [this](int row) {
            if (control_ != nullptr) userRow(*control_, row + 1);
        });
    }

    void apply(Property property) override {
        const QSignalBlocker quiet(&box_);
        if (property == Property::MaxLength && box_.isEditable())
            limitLine(*box_.lineEdit(), control_->maxLength);
        if (property == Property::Rows) refresh();
        if (property == Property::ListIndex) choose();
    }
    void letGo() override {
        if (box_.isEditable()) giveBackText(*control_);
        const QSignalBlocker quiet(&box_);
        rows_->detach();
    }

private:
    void refresh() {
        const QString typed = box_.isEditable() ? box_.lineEdit()->text() : QString();
        rows_->refresh();
        choose();
        if (box_.isEditable()) keepLine(typed);
    }
    void choose() {
        const QString typed = box_.isEditable() ? box_.lineEdit()->text() : QString();
        box_.setCurrentIndex(control_->listIndex - 1);
        // The model says itself when a row's text goes into the line.
        if (box_.isEditable()) keepLine(typed);
    }
    void keepLine(const QString& text) {
        const QSignalBlocker quiet(box_.lineEdit());
        if (box_.lineEdit()->text() != text) putLine(*box_.lineEdit(), text);
    }

    QComboBox& box_;
    RowModel* rows_;
};

// Style 0: a line above a list that is always there.
class SimpleComboPeer : public Peer {
public:
    SimpleComboPeer(Control& control, QWidget& holder)
        : Peer(control, holder), line_(new QLineEdit(&holder)), list_(new RowsView(&holder)),
          rows_(new RowModel(control, &holder)) {
        auto* layout = new QVBoxLayout(&holder);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSpacing(0);
        layout->addWidget(line_);
        layout->addWidget(list_);
        list_->setModel(rows_);
        list_->refreshed = [this] { late_->now(); };
        holder.setFocusProxy(line_);
        takeStore(control, makeLineStore(*line_));
        connect(line_, &QLineEdit::textEdited, this, [this] {
            if (control_ != nullptr) userChange(*control_);
        });
        list_->doubleClicked = [this](QPoint at) {
            at = inWindow(*list_->viewport(), at);
            if (control_ != nullptr) userDoubleClick(*control_, at.x(), at.y());
        };
        connect(list_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
                [this](const QItemSelection& now) {
                    if (!quiet_ && control_ != nullptr && !now.isEmpty())
                        reportRow(*control_, now.first().top() + 1);
                });
    }
    void apply(Property property) override {
        if (property == Property::MaxLength) limitLine(*line_, control_->maxLength);
        if (property == Property::Rows) late_->soon();
        if (property == Property::ListIndex && !late_->isActive()) choose();
    }
    QWidget* focusWidget() override { return line_; }
    void catchUp() override { late_->now(); }
    void letGo() override {
        giveBackText(*control_);
        quiet_ = true;
        late_->stop();
        rows_->detach();
    }

private:
    void choose() {
        quiet_ = true;
        if (control_->listIndex > 0)
            list_->setCurrentIndex(rows_->index(control_->listIndex - 1));
        else
            list_->selectionModel()->clear();
        quiet_ = false;
    }
    void refresh() {
        quiet_ = true;
        rows_->refresh();
        choose();
    }

    QLineEdit* line_;
    RowsView* list_;
    RowModel* rows_;
    Refresher* late_ = new Refresher(this, [this] { refresh(); });
    bool quiet_ = false;
};

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
        const QString text = shown(control_->caption);
        const QString fits = tall ? text : shortened(text);
        label_.setText(fits);
        label_.setAccessibleName(fits != text ? text : QString());  // else its text names it
        label_.setToolTip(fits != text ? text : shown(control_->hint));
    }
    // What is too long for the line, as a path may be, loses its middle.
    [[nodiscard]] QString shortened(const QString& text) const {
        const int room = control_->position.w - 2 * label_.frameWidth();
        if (room <= 0 || text.contains(u'\n')) return text;
        return label_.fontMetrics().elidedText(text, Qt::ElideMiddle, room, Qt::TextShowMnemonic);
    }
    QLabel& label_;
};

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
        if (property == Property::Caption) button_.setText(shown(control_->caption));
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
        button_.setText(shown(control_->caption));
        const bool caption = !control_->caption.empty() && !flat_;
        button_.setToolButtonStyle(icon.isNull() ? Qt::ToolButtonTextOnly
                                   : caption     ? Qt::ToolButtonTextBesideIcon
                                                 : Qt::ToolButtonIconOnly);
    }
    QToolButton& button_;
    bool flat_;
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
        if (property == Property::Caption) button_.setText(shown(control_->caption));
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
        if (property == Property::Caption) button_.setText(shown(control_->caption));
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

class GroupPeer : public Peer {
public:
    GroupPeer(Control& control, QGroupBox& box) : Peer(control, box), box_(box) {
        box.setAttribute(Qt::WA_TransparentForMouseEvents);
        box.lower();  // what it frames are its siblings
    }
    void apply(Property property) override {
        if (property == Property::Caption) box_.setTitle(shown(control_->caption));
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
    case Type::Combobox:
        if (control.comboStyle == 0) return new SimpleComboPeer(control, *new QWidget(parent));
        return new DropPeer(control, *new QComboBox(parent));
    case Type::Iconlist:
        if (control.useTabStops) return makeGridPeer(control, parent);
        [[fallthrough]];
    case Type::Listbox: return new RowsPeer(control, *new RowsView(parent));
    case Type::Pushbutton: return new PushPeer(control, *new QPushButton(parent));
    case Type::Bitmapbutton: return new BitmapButtonPeer(control, *new QToolButton(parent), flat);
    case Type::Checkbox: return new CheckPeer(control, *new QCheckBox(parent));
    case Type::Radiobutton: return new RadioPeer(control, *new QRadioButton(parent));
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
    widget.setAutoFillBackground(control.backColour >= 0);
}

QRect placeOf(const Control& control, const QWidget& widget) {
    const Rect& r = control.position;
    int height = r.h;
    if (qobject_cast<const QComboBox*>(&widget) != nullptr)
        height = std::min(height, widget.sizeHint().height());
    return {r.x, r.y, std::max(r.w, 0), std::max(height, 0)};
}

}  // namespace tarn::platform::qt
