// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/windows/choosers.h"

#include "platform/qt/texts.h"
#include "platform/qt/windows/frame.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QFontDialog>
#include <QFormLayout>
#include <QSpinBox>
#include <QStringList>

namespace tarn::platform::qt {

namespace {

constexpr int MostPages = 9999, MostCopies = 99;

// ---- printers ----

// Which printer prints what, and how often. A page number of 0 shows as no limit.
class PrintBox : public QDialog {
public:
    PrintBox(const Question& question, QWidget* parent) : QDialog(parent) {
        auto* form = new QFormLayout(this);
        for (const std::string& name : question.rows) printer_->addItem(shown(name));
        const QString first = shown(question.value).section(u'\t', 0, 0);
        if (const int at = printer_->findText(first); at >= 0) printer_->setCurrentIndex(at);
        form->addRow(tr("&Printer:"), printer_);
        selection_->setVisible(question.value.find("selection") != std::string::npos);
        form->addRow(QString(), selection_);
        for (QSpinBox* const page : {from_, to_}) {
            page->setRange(0, MostPages);
            page->setSpecialValueText(tr("all"));
        }
        form->addRow(tr("&From page:"), from_);
        form->addRow(tr("&To page:"), to_);
        copies_->setRange(1, MostCopies);
        form->addRow(tr("&Copies:"), copies_);
        auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
        connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
        connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
        form->addRow(buttons);
        connect(selection_, &QCheckBox::toggled, this, [this](bool on) {
            from_->setEnabled(!on);
            to_->setEnabled(!on);
        });
    }
    [[nodiscard]] QString answer() const {
        const bool marked = selection_->isVisibleTo(this) && selection_->isChecked();
        return QStringLiteral("%1\t%2\t%3\t%4\t%5")
            .arg(printer_->currentText(), marked ? QStringLiteral("selection") : QString())
            .arg(from_->value())
            .arg(to_->value())
            .arg(copies_->value());
    }
    void take(const QString& answer) {
        const QStringList parts = answer.split(u'\t');
        printer_->setCurrentText(parts.value(0));
        selection_->setChecked(parts.value(1) == u"selection");
        from_->setValue(parts.value(2).toInt());
        to_->setValue(parts.value(3).toInt());
        copies_->setValue(std::max(parts.value(4).toInt(), 1));
    }

private:
    QComboBox* printer_ = new QComboBox(this);
    QCheckBox* selection_ = new QCheckBox(tr("Only the &selection"), this);
    QSpinBox *from_ = new QSpinBox(this), *to_ = new QSpinBox(this), *copies_ = new QSpinBox(this);
};

// ---- fonts ----

// The box finds the style of a font by its name, which families spell as they like ("Normal", "Book", "Roman"); without
// a name that the family has it takes another, which may be slanted. The plainest name that fits is the shortest.
void nameStyle(QFont& font) {
    QString best;
    for (const QString& style : QFontDatabase::styles(font.family())) {
        const bool fits = QFontDatabase::bold(font.family(), style) == font.bold() &&
                          QFontDatabase::italic(font.family(), style) == font.italic();
        if (fits && (best.isEmpty() || style.size() < best.size())) best = style;
    }
    if (!best.isEmpty()) font.setStyleName(best);
}

QFont fontOf(const QString& text, bool fixedWidth) {
    const QStringList parts = text.split(u'\t');
    QFont font = fixedWidth ? QFontDatabase::systemFont(QFontDatabase::FixedFont) : QFont();
    if (!parts.value(0).isEmpty()) font.setFamily(parts[0]);
    if (parts.value(1).toInt() > 0) font.setPointSize(parts[1].toInt());
    font.setBold(parts.value(2).contains(u'b'));
    font.setItalic(parts.value(2).contains(u'i'));
    nameStyle(font);
    return font;
}

QString textOf(const QFont& font) {
    const QString style = QString(font.bold() ? u"b"_qs : QString()) + (font.italic() ? u"i"_qs : QString());
    return QStringLiteral("%1\t%2\t%3").arg(font.family()).arg(font.pointSize()).arg(style);
}

// ---- colours: 0xBBGGRR ----

QColor colourIn(const std::string& text) {
    const int value = QByteArray::fromStdString(text).toInt(nullptr, 0);
    return {value & 0xFF, value >> 8 & 0xFF, value >> 16 & 0xFF};
}

QString textOf(const QColor& colour) {
    const int value = colour.blue() << 16 | colour.green() << 8 | colour.red();
    return QStringLiteral("0x%1").arg(value, 6, 16, QLatin1Char('0'));
}

}  // namespace

bool isChooser(const Question& question) {
    return question.kind == Question::Kind::Font || question.kind == Question::Kind::Colour ||
           question.kind == Question::Kind::Print;
}

std::unique_ptr<QDialog> makeChooser(const Question& question, QWidget* parent) {
    std::unique_ptr<QDialog> box;
    if (question.kind == Question::Kind::Font) {
        auto font = std::make_unique<QFontDialog>(fontOf(shown(question.value), question.fixedWidth), parent);
        font->setOption(QFontDialog::DontUseNativeDialog);
        box = std::move(font);
    } else if (question.kind == Question::Kind::Colour) {
        auto colour = std::make_unique<QColorDialog>(colourIn(question.value), parent);
        colour->setOption(QColorDialog::DontUseNativeDialog);
        box = std::move(colour);
    } else {
        box = std::make_unique<PrintBox>(question, parent);
    }
    box->setWindowTitle(shown(question.title));
    box->setWindowModality(Qt::ApplicationModal);
    box->setWindowFlag(Qt::WindowStaysOnTopHint, staysOnTop());
    return box;
}

std::string chosenIn(const Question& question, QDialog& box) {
    switch (question.kind) {
    case Question::Kind::Font: return textOf(static_cast<QFontDialog&>(box).selectedFont()).toStdString();
    case Question::Kind::Colour: return textOf(static_cast<QColorDialog&>(box).selectedColor()).toStdString();
    default: return static_cast<PrintBox&>(box).answer().toStdString();
    }
}

void chooseIn(const Question& question, QDialog& box, const std::string& answer) {
    switch (question.kind) {
    case Question::Kind::Font:
        static_cast<QFontDialog&>(box).setCurrentFont(fontOf(shown(answer), question.fixedWidth));
        break;
    case Question::Kind::Colour: static_cast<QColorDialog&>(box).setCurrentColor(colourIn(answer)); break;
    default: static_cast<PrintBox&>(box).take(shown(answer)); break;
    }
    QMetaObject::invokeMethod(&box, "accept");
}

}  // namespace tarn::platform::qt
