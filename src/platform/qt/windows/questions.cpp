// SPDX-License-Identifier: Apache-2.0
#include "platform/qt/windows/questions.h"

#include "platform/operations/boxhelp.h"
#include "platform/qt/texts.h"
#include "platform/qt/windows/choosers.h"
#include "platform/qt/windows/frame.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QStyle>
#include <QTextEdit>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>
#include <vector>

namespace tarn::platform::qt {

namespace {

struct Open {
    const Question* question;
    QDialog* box;
};
std::vector<Open>& open() {
    static std::vector<Open> all;
    return all;
}

// Runs a box and keeps it in the list of open ones.
int run(const Question& question, QDialog& box) {
    open().push_back({&question, &box});
    const QShortcut help(QKeySequence(Qt::Key_F1), &box);
    QObject::connect(&help, &QShortcut::activated, &box, [&question] { userBoxHelp(question); });
    const int result = box.exec();
    open().pop_back();
    return result;
}

QStyle::StandardPixmap pixmapOf(BoxIcon icon) {
    switch (icon) {
    case BoxIcon::Warning: return QStyle::SP_MessageBoxWarning;
    case BoxIcon::Error: return QStyle::SP_MessageBoxCritical;
    case BoxIcon::Question: return QStyle::SP_MessageBoxQuestion;
    default: return QStyle::SP_MessageBoxInformation;
    }
}

// A text of a given width in which words that are longer, as paths may be, break anywhere, and which scrolls
// beyond a given height.
QWidget* makeWrappedText(const QString& text, QWidget* parent, int width, int height) {
    auto* view = new QTextEdit(parent);
    view->setReadOnly(true);
    view->setFrameShape(QFrame::NoFrame);
    view->setTabChangesFocus(true);
    view->document()->setDocumentMargin(0);
    view->setTabStopDistance(view->fontMetrics().averageCharWidth() * 8.0);
    view->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    view->setLineWrapMode(QTextEdit::FixedPixelWidth);
    view->setLineWrapColumnOrWidth(width);
    view->setPlainText(text);
    QPalette palette = view->palette();
    palette.setColor(QPalette::Base, palette.color(QPalette::Window));
    palette.setColor(QPalette::Text, palette.color(QPalette::WindowText));
    view->setPalette(palette);
    view->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    view->document()->setTextWidth(width);
    const int bar = view->style()->pixelMetric(QStyle::PM_ScrollBarExtent) + 8;
    const int needed = static_cast<int>(std::ceil(view->document()->size().height()));
    view->setFixedSize(width + bar, std::min(needed, height));
    return view;
}

// A label whose text can be selected measures tabs as something else than it draws, and would cut the line.
QString withoutTabs(QString text) {
    return text.replace(QLatin1Char('\t'), QStringLiteral("        "));
}

// A text that can be selected. It takes no more than six tenths of the screen, so that the buttons stay there.
QWidget* makeText(const QString& text, QWidget* parent) {
    const QSize room = parent->screen()->availableSize() * 6 / 10;
    auto* label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setText(withoutTabs(text));
    const QSize size = label->sizeHint();
    QWidget* made = label;
    if (size.width() > room.width() || size.height() > room.height()) {
        delete label;
        made = makeWrappedText(text, parent, std::min(size.width(), room.width()), room.height());
    } else {
        label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    }
    made->setFocusPolicy(Qt::ClickFocus);
    made->setObjectName(QStringLiteral("text"));
    made->setAccessibleName(text);
    return made;
}

void prepare(QDialog& box, const Question& question) {
    box.setWindowTitle(shown(question.title));
    box.setWindowModality(Qt::ApplicationModal);
    box.setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    box.setWindowFlag(Qt::WindowStaysOnTopHint, staysOnTop());
}

QPushButton* makeButton(const QString& caption, QDialog& box) {
    auto* button = new QPushButton(caption, &box);
    button->setMinimumWidth(box.fontMetrics().averageCharWidth() * 12);
    button->setAutoDefault(true);
    return button;
}

QPushButton* addButton(QHBoxLayout& row, const QString& caption, QDialog& box) {
    QPushButton* const button = makeButton(caption, box);
    row.addWidget(button);
    return button;
}

// In as many rows as it takes for each button to be on the screen.
QVBoxLayout* inRows(const std::vector<QPushButton*>& buttons, const QDialog& box) {
    constexpr int Between = 16, Above = 8;
    auto* rows = new QVBoxLayout;
    rows->setSpacing(Above);
    QHBoxLayout* row = nullptr;
    const int room = box.screen()->availableSize().width() * 8 / 10;
    int used = 0;
    for (QPushButton* const button : buttons) {
        const int width = std::max(button->sizeHint().width(), button->minimumWidth());
        if (row == nullptr || used + width > room) {
            row = new QHBoxLayout;
            row->setSpacing(Between);
            row->addStretch();
            rows->addLayout(row);
            used = 0;
        }
        row->addWidget(button);
        used += width + Between;
    }
    return rows;
}

// ---- message ----

std::string askMessage(const Question& question, QWidget* parent) {
    QDialog box(parent);
    prepare(box, question);
    box.setAccessibleDescription(shown(question.text));  // read out when the box appears
    auto* layout = new QVBoxLayout(&box);
    layout->setContentsMargins(16, 16, 16, 12);
    layout->setSpacing(16);
    auto* top = new QHBoxLayout;
    top->setSpacing(16);
    if (question.icon != BoxIcon::None) {
        auto* icon = new QLabel(&box);
        const int side = box.style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, &box);
        icon->setPixmap(box.style()->standardIcon(pixmapOf(question.icon), nullptr, &box).pixmap(side, side));
        top->addWidget(icon, 0, Qt::AlignTop);
    }
    top->addWidget(makeText(shown(question.text), &box), 1);
    layout->addLayout(top);
    std::vector<QPushButton*> buttons;
    std::vector<std::string> captions = question.buttons;
    if (captions.empty()) captions.emplace_back("OK");
    std::string answer;
    for (std::size_t i = 0; i < captions.size(); ++i) {
        QPushButton* const button = buttons.emplace_back(makeButton(marked(shown(captions[i])), box));
        QObject::connect(button, &QPushButton::clicked, &box, [&, i] {
            answer = captions[i];
            box.accept();
        });
        if (static_cast<int>(i) + 1 == question.defaultButton || i == 0) {
            button->setDefault(true);
            button->setFocus();
        }
    }
    layout->addLayout(inRows(buttons, box));
    layout->setSizeConstraint(QLayout::SetFixedSize);
    return run(question, box) == QDialog::Accepted ? answer : std::string();
}

// ---- a line, a row ----

QHBoxLayout* okAndCancel(QDialog& box) {
    auto* row = new QHBoxLayout;
    row->addStretch();
    QPushButton* ok = addButton(*row, QObject::tr("OK"), box);
    ok->setDefault(true);
    QObject::connect(ok, &QPushButton::clicked, &box, &QDialog::accept);
    QPushButton* cancel = addButton(*row, QObject::tr("Cancel"), box);
    cancel->setAutoDefault(false);
    QObject::connect(cancel, &QPushButton::clicked, &box, &QDialog::reject);
    return row;
}

void addPrompt(QVBoxLayout& layout, const Question& question, QDialog& box) {
    if (!question.text.empty()) layout.addWidget(makeText(shown(question.text), &box));
}

std::string askLine(const Question& question, QWidget* parent) {
    QDialog box(parent);
    prepare(box, question);
    auto* layout = new QVBoxLayout(&box);
    addPrompt(*layout, question, box);
    auto* line = new QLineEdit(shown(question.value), &box);
    line->setMaxLength(1024);
    line->setMinimumWidth(box.fontMetrics().averageCharWidth() * 48);
    line->setAccessibleName(shown(question.text));
    line->selectAll();
    layout->addWidget(line);
    layout->addLayout(okAndCancel(box));
    line->setFocus();
    if (run(question, box) != QDialog::Accepted) return {};
    return bytesOf(line->text(), question.value);
}

void filterRows(QListWidget& list, const QString& text) {
    QListWidgetItem* first = nullptr;
    for (int i = 0; i < list.count(); ++i) {
        QListWidgetItem* item = list.item(i);
        item->setHidden(!item->text().contains(text, Qt::CaseInsensitive));
        if (first == nullptr && !item->isHidden()) first = item;
    }
    if (list.currentItem() == nullptr || list.currentItem()->isHidden()) list.setCurrentItem(first);
}

// Typing narrows the rows; the arrows walk them without leaving the line.
class FilterLine : public QLineEdit {
public:
    FilterLine(QListWidget& list, QWidget* parent) : QLineEdit(parent), list_(list) {}

protected:
    void keyPressEvent(QKeyEvent* event) override {
        const bool walk = event->key() == Qt::Key_Up || event->key() == Qt::Key_Down ||
                          event->key() == Qt::Key_PageUp || event->key() == Qt::Key_PageDown;
        if (walk)
            QApplication::sendEvent(&list_, event);
        else
            QLineEdit::keyPressEvent(event);
    }

private:
    QListWidget& list_;
};

std::string askRow(const Question& question, QWidget* parent) {
    QDialog box(parent);
    prepare(box, question);
    auto* layout = new QVBoxLayout(&box);
    addPrompt(*layout, question, box);
    auto* list = new QListWidget(&box);
    auto* line = new FilterLine(*list, &box);
    line->setPlaceholderText(QObject::tr("Filter"));
    line->setAccessibleName(QObject::tr("Filter"));
    line->setClearButtonEnabled(true);
    line->setVisible(question.rows.size() > 8);
    list->setUniformItemSizes(true);
    list->setAccessibleName(shown(question.text.empty() ? question.title : question.text));
    for (const auto& row : question.rows) list->addItem(shown(row));
    if (list->count() > 0) list->setCurrentRow(0);
    list->setMinimumSize(
        std::clamp(list->sizeHintForColumn(0) + 40, 320, box.screen()->availableSize().width() / 2),
        std::clamp(static_cast<int>(question.rows.size()) * 24, 160, 360));
    QObject::connect(line, &QLineEdit::textChanged, list,
                     [list](const QString& text) { filterRows(*list, text); });
    QObject::connect(list, &QListWidget::itemDoubleClicked, &box, &QDialog::accept);
    layout->addWidget(line);
    layout->addWidget(list, 1);
    layout->addLayout(okAndCancel(box));
    (line->isVisibleTo(&box) ? static_cast<QWidget*>(line) : list)->setFocus();
    if (run(question, box) != QDialog::Accepted || list->currentItem() == nullptr) return {};
    return question.rows[static_cast<std::size_t>(list->currentRow())];
}

// ---- files ----

// "Text (*.ext)|*.ext|" rows, or a bare pattern; a pattern may stand in parentheses.
QStringList filtersOf(const std::string& filter) {
    QStringList filters;
    const QStringList parts = shown(filter).split(u'|', Qt::SkipEmptyParts);
    for (qsizetype i = 0; i < parts.size(); i += 2) {
        QString text = parts[i].trimmed();
        QString pattern = (i + 1 < parts.size() ? parts[i + 1] : text).trimmed();
        if (pattern.startsWith(u'(') && pattern.endsWith(u')')) pattern = pattern.mid(1).chopped(1);
        pattern.replace(u';', u' ');
        text = text.section(u'(', 0, 0).trimmed();
        filters << (text.isEmpty() || text == pattern ? QObject::tr("Files") : text) +
                       QStringLiteral(" (%1)").arg(pattern);
    }
    const bool all =
        std::any_of(filters.begin(), filters.end(), [](const QString& f) { return f.endsWith(u"(*)"); });
    if (!filters.isEmpty() && !all) filters << QObject::tr("All files") + QStringLiteral(" (*)");
    return filters;
}

// A path on each line. One that holds a line feed would be two, and is left out.
std::string linesOfPaths(const QStringList& paths) {
    std::string lines;
    for (const QString& path : paths)
        if (!path.contains(u'\n')) lines += QFile::encodeName(path).toStdString() + "\n";
    return lines;
}

// What the user would type into the line of the dialog: several names stand in quotes there.
QString typedFiles(const Question& question, const std::string& text) {
    const QStringList paths = shown(text).split(u'\n', Qt::SkipEmptyParts);
    if (!question.several || paths.size() < 2) return shown(text);
    return u'"' + paths.join(QStringLiteral("\" \"")) + u'"';
}

std::string askFile(const Question& question, QWidget* parent) {
    QFileDialog box(parent, shown(question.title));
    box.setWindowModality(Qt::ApplicationModal);
    box.setWindowFlag(Qt::WindowStaysOnTopHint, staysOnTop());
    const bool save = question.kind == Question::Kind::SaveFile,
               folder = question.kind == Question::Kind::Folder;
    box.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    box.setFileMode(save               ? QFileDialog::AnyFile
                    : folder           ? QFileDialog::Directory
                    : question.several ? QFileDialog::ExistingFiles
                                       : QFileDialog::ExistingFile);
    box.setOption(QFileDialog::ShowDirsOnly, folder);
    if (const QStringList filters = filtersOf(question.filter); !filters.isEmpty() && !folder)
        box.setNameFilters(filters);
    const QFileInfo start(shown(question.value));
    if (!question.value.empty()) {
        const bool isFolder = start.isDir();
        box.setDirectory(isFolder ? start.filePath() : start.path());
        if (!isFolder && !start.fileName().contains(u'*')) box.selectFile(start.fileName());
    }
    if (run(question, box) != QDialog::Accepted || box.selectedFiles().isEmpty()) return {};
    if (question.several) return linesOfPaths(box.selectedFiles());
    const QByteArray path = QFile::encodeName(box.selectedFiles().constFirst());
    return {path.constData(), static_cast<std::size_t>(path.size())};
}

std::string bare(std::string_view caption) {
    return withoutMnemonic(shown(caption)).toStdString();
}

bool press(QDialog& box, const std::string& caption) {
    for (auto* button : box.findChildren<QPushButton*>())
        if (bare(button->text().toStdString()) == bare(caption)) {
            button->click();
            return true;
        }
    return false;
}

bool choose(QDialog& box, const std::string& text) {
    auto* list = box.findChild<QListWidget*>();
    if (list == nullptr) return false;
    const auto found = list->findItems(shown(text), Qt::MatchExactly | Qt::MatchCaseSensitive);
    if (found.isEmpty()) return false;
    list->setCurrentItem(found.constFirst());
    box.accept();
    return true;
}

}  // namespace

std::string askUser(const Question& question, QWidget* parent) {
    if (isChooser(question)) {
        const std::unique_ptr<QDialog> box = makeChooser(question, parent);
        return run(question, *box) == QDialog::Accepted ? chosenIn(question, *box) : std::string();
    }
    switch (question.kind) {
    case Question::Kind::Message: return askMessage(question, parent);
    case Question::Kind::Input: return askLine(question, parent);
    case Question::Kind::List: return askRow(question, parent);
    default: return askFile(question, parent);
    }
}

const Question* asking() {
    return open().empty() ? nullptr : open().back().question;
}

bool answerQuestion(const std::string& text) {
    if (open().empty()) return false;
    const auto [question, box] = open().back();
    if (text.empty()) {
        box->reject();
        return true;
    }
    if (question->kind == Question::Kind::Message) return press(*box, text);
    if (question->kind == Question::Kind::List) return choose(*box, text);
    if (isChooser(*question)) return chooseIn(*question, *box, text), true;
    if (auto* files = qobject_cast<QFileDialog*>(box); files != nullptr) {
        if (!question->several) files->selectFile(shown(text));
        auto* line = files->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        if (line != nullptr) line->setText(typedFiles(*question, text));
        QMetaObject::invokeMethod(files, "accept");
        return true;
    }
    auto* line = box->findChild<QLineEdit*>();
    line->setText(shown(text));
    box->accept();
    return true;
}

void closeQuestions() {
    for (auto i = open().rbegin(); i != open().rend(); ++i) i->box->reject();
}

}  // namespace tarn::platform::qt
