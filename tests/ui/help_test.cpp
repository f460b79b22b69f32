// SPDX-License-Identifier: GPL-3.0-or-later
//
// The compiled help and its window, as its library shows it: topics, links, search, history, palettes, print, place,
// and its cache: two at once, damaged, read-only.
#include "ide/help/helplibrary.h"
#include "support/places.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QHelpEngineCore>
#include <QHelpLink>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QRegularExpression>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBrowser>
#include <QTimer>
#include <QTreeView>
#include <QWindow>

#include <dlfcn.h>
#include <memory>
#include <string>

namespace tarn::help {
namespace {

const QString File = QStringLiteral(BINARY_DIR "/help/Tarnwick.qch");
std::string kept;              // the place that the window handed over last
std::string asked, printFile;  // the title that was to be printed, and where
int fromPage = 0, toPage = 0;  // which pages of it

const char* show(const QString& file, const char* topic, const char* place = "") {
    static const auto library = dlopen(BINARY_DIR "/libtarnwick-help.so", RTLD_NOW);
    static const auto function =
        reinterpret_cast<Show>(library == nullptr ? nullptr : dlsym(library, ShowName));
    if (function == nullptr) return "the library is not there";
    const QByteArray path = file.toUtf8();
    return function({path.constData(), topic, place, [](const char* text) { kept = text; },
                     [](const char* title, PrintTarget& target) {
                         asked = title;
                         target.file = printFile;
                         target.from = fromPage;
                         target.to = toPage;
                         return !printFile.empty();
                     }});
}

class HelpWindowTest : public ::testing::Test {
protected:
    void SetUp() override {
        qputenv("XDG_CACHE_HOME", cache.path().toUtf8());
        ASSERT_EQ(show(File, "Help_Keyboard Commands"), nullptr);
        for (QWidget* top : QApplication::topLevelWidgets())
            if (top->objectName() == u"HelpWindow") window = top;
        ASSERT_NE(window, nullptr);
        page = window->findChild<QTextBrowser*>(QStringLiteral("helppage"));
        search = window->findChild<QLineEdit*>(QStringLiteral("searchline"));
        hits = window->findChild<QListWidget*>(QStringLiteral("searchhits"));
        QApplication::setActiveWindow(window);
        ASSERT_TRUE(page != nullptr && search != nullptr && hits != nullptr);
    }
    void TearDown() override {
        if (window != nullptr) window->close();
    }
    void press(QWidget* on, Qt::Key key, Qt::KeyboardModifiers with = Qt::NoModifier) {
        QApplication::setActiveWindow(window);
        QTest::keyClick(on, key, with);
    }

    static inline QTemporaryDir cache;
    QWidget* window = nullptr;
    QTextBrowser* page = nullptr;
    QLineEdit* search = nullptr;
    QListWidget* hits = nullptr;
};

TEST_F(HelpWindowTest, ShowsTopicsInAnyCaseWithBlanksOrNone) {
    struct Case {
        const char *topic, *title;
    };
    const Case cases[] = {{"STRFIND", "STRFIND"},
                          {"strfind", "STRFIND"},
                          {"Help_Run-time Errors", "Run-time errors"},
                          {"help_run-time_errors", "Run-time errors"},
                          {"Edit_Undo ", "Undo and restore points"},
                          {"1101", "1101 ... is expected, but ... follows"},
                          {"602", "602 Array reference out of bounds"},
                          {"ERR_ARRAY_BOUNDS", "602 Array reference out of bounds"},
                          {"While", "Loops: loop, for, while, exit, iterate"},
                          {"", "Contents of the help"}};
    for (const Case& c : cases) {
        EXPECT_EQ(show(File, c.topic), nullptr);
        EXPECT_EQ(page->documentTitle().toStdString(), c.title) << c.topic;
    }
}

// The toolkit goes round a ring for ever.
TEST_F(HelpWindowTest, BelongsToADialogThatBelongedToItWithoutARing) {
    QDialog dialog;
    dialog.setModal(true);
    dialog.winId();
    dialog.windowHandle()->setTransientParent(window->windowHandle());
    dialog.show();
    EXPECT_EQ(show(File, "STRFIND"), nullptr);
    EXPECT_EQ(window->windowHandle()->transientParent(), dialog.windowHandle());
    EXPECT_EQ(dialog.windowHandle()->transientParent(), nullptr);
    dialog.hide();
    EXPECT_EQ(show(File, "STRFIND"), nullptr);
    EXPECT_EQ(window->windowHandle()->transientParent(), nullptr);
}

TEST_F(HelpWindowTest, IsOneWindowThatIsUsedAgain) {
    EXPECT_EQ(show(File, "STRFIND"), nullptr);
    int windows = 0;
    for (const QWidget* top : QApplication::topLevelWidgets()) windows += top->objectName() == u"HelpWindow";
    EXPECT_EQ(windows, 1);
    window->close();
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(show(File, "STRLEFT"), nullptr);
    EXPECT_TRUE(window->isVisible());
    EXPECT_FALSE(window->isModal());
}

TEST_F(HelpWindowTest, GoesBackAndForward) {
    EXPECT_EQ(show(File, "STRFIND"), nullptr);
    EXPECT_EQ(show(File, "STRLEFT"), nullptr);
    press(page, Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(page->documentTitle(), u"STRFIND");
    press(page, Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(page->documentTitle(), u"STRLEFT");
    press(page, Qt::Key_Home, Qt::AltModifier);
    EXPECT_EQ(page->documentTitle(), u"Contents of the help");
}

TEST_F(HelpWindowTest, SearchesForAllWordsAndPutsTitlesFirst) {
    press(page, Qt::Key_F1);
    EXPECT_TRUE(search->hasFocus());
    search->setText(QStringLiteral("strfind"));
    ASSERT_GT(hits->count(), 0);
    EXPECT_EQ(hits->item(0)->text(), u"STRFIND");
    search->setText(QStringLiteral("strfind zebracrossing"));
    EXPECT_EQ(hits->count(), 0);
    search->setText(QStringLiteral("leap"));
    EXPECT_EQ(hits->count(), 0) << "words are found from their beginning: ISGREGORIANLEAPYEAR is one word";
    search->setText(QStringLiteral("full disk"));
    ASSERT_GT(hits->count(), 0);
    press(search, Qt::Key_Return);
    EXPECT_TRUE(page->toPlainText().contains(u"disk"));
    search->setText(QStringLiteral("   "));
    EXPECT_EQ(hits->count(), 0);
    search->setText(QStringLiteral("<b> & \" ' % .* \\"));
    EXPECT_EQ(page->documentTitle().isEmpty(), false) << "signs mean nothing";
}

TEST_F(HelpWindowTest, MarksTheWordsThatWereSearchedForAndShowsTheFirst) {
    search->setText(QStringLiteral("compiler messages"));
    hits->setCurrentRow(hits->count() - 1);
    press(search, Qt::Key_Return);
    const auto marks = page->extraSelections();
    ASSERT_FALSE(marks.isEmpty());
    for (const auto& mark : marks) {
        const QString word = mark.cursor.selectedText().toLower();
        EXPECT_TRUE(word == u"compiler" || word == u"messages") << word.toStdString();
    }
    EXPECT_TRUE(page->viewport()->rect().contains(page->cursorRect(marks.first().cursor)));
    EXPECT_EQ(show(File, "STRFIND"), nullptr);
    EXPECT_TRUE(page->extraSelections().isEmpty()) << "another page has no marks";
}

TEST_F(HelpWindowTest, SearchesForAWordOnceHoweverOftenItIsPasted) {
    search->setText(QStringLiteral("a"));
    const int pages = hits->count();
    ASSERT_GT(pages, 10);
    QElapsedTimer time;
    time.start();
    search->setText(QStringLiteral("a ").repeated(16000));
    EXPECT_EQ(hits->count(), pages);
    EXPECT_LT(time.elapsed(), 2000);
}

TEST_F(HelpWindowTest, NamesTheChaptersOfPagesWithTheSameTitle) {
    QTreeView* contents = nullptr;
    for (QTreeView* tree : window->findChildren<QTreeView*>())
        if (tree->accessibleName() == u"Contents") contents = tree;
    ASSERT_NE(contents, nullptr);
    QTRY_VERIFY(contents->model()->rowCount() > 0);
    for (const char* title : {"Files", "Printing", "Windows", "Programs"}) {
        search->setText(QString::fromLatin1(title));
        QStringList named;
        for (int i = 0; i < hits->count(); i++)
            if (hits->item(i)->text().startsWith(QLatin1String(title))) named << hits->item(i)->text();
        EXPECT_GE(named.size(), 2) << title;
        EXPECT_EQ(named.removeDuplicates(), 0) << title;
    }
    search->setText(QStringLiteral("strfind"));
    EXPECT_EQ(hits->item(0)->text(), u"STRFIND") << "what is alone has its title alone";
}

TEST_F(HelpWindowTest, GoesBackToEachWordWithoutAPage) {
    EXPECT_EQ(show(File, "zebra"), nullptr);
    EXPECT_EQ(show(File, "giraffe"), nullptr);
    EXPECT_EQ(page->documentTitle(), u"giraffe");
    press(page, Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(page->documentTitle(), u"zebra");
}

TEST_F(HelpWindowTest, LooksForAWordWithoutAPage) {
    EXPECT_EQ(show(File, "<b>disk"), nullptr);
    EXPECT_TRUE(page->toPlainText().contains(u"<b>disk")) << "a word is no markup";
    EXPECT_EQ(show(File, "disk"), nullptr);
    EXPECT_EQ(search->text(), u"disk");
    EXPECT_GT(hits->count(), 3);
    EXPECT_TRUE(page->toPlainText().contains(u"There is no page of this name"));
    EXPECT_EQ(show(File, "STRFIND"), nullptr);
    press(page, Qt::Key_Left, Qt::AltModifier);
    EXPECT_TRUE(page->toPlainText().contains(u"There is no page of this name")) << "it is a page like others";
}

TEST_F(HelpWindowTest, FindsInThePageRoundItsEnd) {
    EXPECT_EQ(show(File, "Help_Keyboard Commands"), nullptr);
    press(page, Qt::Key_F, Qt::ControlModifier);
    auto* line = window->findChild<QLineEdit*>(QStringLiteral("findline"));
    ASSERT_TRUE(line != nullptr && line->hasFocus());
    line->setText(QStringLiteral("quickbuild"));
    EXPECT_EQ(page->textCursor().selectedText(), u"quickbuild");
    const int place = page->textCursor().position();
    press(line, Qt::Key_Return);
    EXPECT_EQ(page->textCursor().position(), place) << "there is one; it is found again from the other end";
    line->setText(QStringLiteral("zebracrossing"));
    press(line, Qt::Key_Escape);
    EXPECT_FALSE(line->isVisible());
    EXPECT_TRUE(window->isVisible()) << "the first Esc closes the line";
    press(page, Qt::Key_Escape);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(HelpWindowTest, HasAnIndexAndContents) {
    auto* line = window->findChild<QLineEdit*>(QStringLiteral("indexline"));
    auto* tabs = window->findChild<QTabWidget*>();
    EXPECT_EQ(show(File, "Help_Index"), nullptr);
    EXPECT_TRUE(line->hasFocus());
    EXPECT_EQ(tabs->currentIndex(), 1);
    for (int i = 0; i < 100 && tabs->widget(1)->findChild<QListView*>()->model()->rowCount() < 300; ++i)
        QTest::qWait(20);
    EXPECT_GE(tabs->widget(1)->findChild<QListView*>()->model()->rowCount(), 300);
    line->setText(QStringLiteral("Serial"));
    press(line, Qt::Key_Return);
    EXPECT_TRUE(page->documentTitle().startsWith(u"Serial")) << page->documentTitle().toStdString();
    auto* tree = tabs->widget(0)->findChild<QTreeView*>();
    ASSERT_NE(tree, nullptr);
    for (int i = 0; i < 100 && tree->model()->rowCount() < 9; ++i) QTest::qWait(20);
    EXPECT_GE(tree->model()->rowCount(), 9) << "the chapters";
    EXPECT_EQ(show(File, "STRFIND"), nullptr);
    for (int i = 0; i < 100 && tree->currentIndex().data().toString() != u"STRFIND"; ++i) QTest::qWait(20);
    EXPECT_EQ(tree->currentIndex().data().toString(), u"STRFIND")
        << "the contents tell where the page stands";
}

TEST_F(HelpWindowTest, FollowsThePaletteAndStaysWhereItWasRead) {
    EXPECT_EQ(show(File, "1101"), nullptr);
    const QPalette before = QApplication::palette();
    const QString light = page->document()->defaultStyleSheet();
    QPalette dark = before;
    dark.setColor(QPalette::Base, QColor(30, 30, 30));
    dark.setColor(QPalette::Text, QColor(220, 220, 220));
    QApplication::setPalette(dark);
    QTest::qWait(20);
    EXPECT_NE(page->document()->defaultStyleSheet(), light);
    EXPECT_EQ(page->documentTitle().left(4), u"1101");
    QApplication::setPalette(before);
    QTest::qWait(20);
    EXPECT_EQ(page->document()->defaultStyleSheet(), light);
}

TEST_F(HelpWindowTest, ZoomsAndKeepsItsPlace) {
    const qreal size = page->font().pointSizeF();
    press(page, Qt::Key_Plus, Qt::ControlModifier);
    press(page, Qt::Key_Plus, Qt::ControlModifier);
    EXPECT_GT(page->font().pointSizeF(), size);
    window->setGeometry(50, 60, 640, 480);
    press(page, Qt::Key_Escape);
    EXPECT_TRUE(QString::fromStdString(kept).startsWith(u"50 60 640 480 ")) << kept;
    EXPECT_TRUE(QString::fromStdString(kept).endsWith(u" 2")) << kept;
    EXPECT_EQ(show(File, ""), nullptr);
    press(page, Qt::Key_0, Qt::ControlModifier);
    EXPECT_EQ(page->font().pointSizeF(), size);
    for (int i = 0; i < 40; ++i) press(page, Qt::Key_Minus, Qt::ControlModifier);
    EXPECT_GT(page->font().pointSizeF(), 1) << "letters do not vanish";
    press(page, Qt::Key_0, Qt::ControlModifier);
}

TEST_F(HelpWindowTest, PrintsThePageWhereTheUserWants) {
    QTemporaryDir dir;
    EXPECT_EQ(show(File, "1101"), nullptr);
    printFile.clear();
    press(page, Qt::Key_P, Qt::ControlModifier);
    EXPECT_EQ(asked, "1101 ... is expected, but ... follows") << "and Cancel prints nothing";
    printFile = dir.filePath(QStringLiteral("page.pdf")).toStdString();
    press(page, Qt::Key_P, Qt::ControlModifier);
    QFile printed(QString::fromStdString(printFile));
    ASSERT_TRUE(printed.open(QIODevice::ReadOnly));
    EXPECT_EQ(printed.read(5), "%PDF-");
    EXPECT_GT(printed.size(), 2000);
    printFile.clear();
}

TEST_F(HelpWindowTest, PrintsThePagesThatWereChosen) {
    QTemporaryDir dir;
    const auto pagesOf = [&](int from, int to) {
        fromPage = from, toPage = to;
        printFile = dir.filePath(QStringLiteral("pages.pdf")).toStdString();
        press(page, Qt::Key_P, Qt::ControlModifier);
        fromPage = toPage = 0;
        QFile printed(QString::fromStdString(printFile));
        return printed.open(QIODevice::ReadOnly) ? printed.readAll().count("/Type /Page\n") : 0;
    };
    EXPECT_EQ(show(File, "Help_Run-time Errors"), nullptr);
    const auto all = pagesOf(0, 0);
    EXPECT_GT(all, 2);
    EXPECT_EQ(pagesOf(2, 2), 1);
    EXPECT_EQ(pagesOf(2, 0), all - 1);
    EXPECT_EQ(pagesOf(0, 2), 2);
    printFile.clear();
}

TEST_F(HelpWindowTest, TellsThatAPageCouldNotBePrinted) {
    QTemporaryDir dir;
    EXPECT_EQ(show(File, "1101"), nullptr);
    printFile = dir.filePath(QStringLiteral("none/page.pdf")).toStdString();
    QString told;
    QTimer::singleShot(0, [&told] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (box == nullptr) return;
        told = box->text();
        box->close();
    });
    press(page, Qt::Key_P, Qt::ControlModifier);
    EXPECT_TRUE(told.contains(QString::fromStdString(printFile))) << told.toStdString();
    printFile.clear();
}

TEST_F(HelpWindowTest, EveryPartHasANameForScreenReaders) {
    for (const QWidget* part :
         {static_cast<QWidget*>(page), static_cast<QWidget*>(search), static_cast<QWidget*>(hits)})
        EXPECT_FALSE(part->accessibleName().isEmpty()) << part->objectName().toStdString();
}

TEST_F(HelpWindowTest, TellsWhyAFileCannotBeShownAndGoesOn) {
    QTemporaryDir dir;
    const QString damaged = dir.filePath(QStringLiteral("a.qch"));
    QFile out(damaged);
    ASSERT_TRUE(out.open(QIODevice::WriteOnly));
    out.write("this is no compiled help");
    out.close();
    EXPECT_NE(show(damaged, "STRFIND"), nullptr);
    EXPECT_NE(show(dir.filePath(QStringLiteral("none.qch")), "STRFIND"), nullptr);
    EXPECT_EQ(show(File, "STRFIND"), nullptr);
    EXPECT_EQ(page->documentTitle(), u"STRFIND");
}

// Another help file, so that it is opened anew.
QString copyIn(const QTemporaryDir& dir, const char* name) {
    const QString copy = dir.filePath(QString::fromLatin1(name));
    QFile::copy(File, copy);
    return copy;
}

TEST_F(HelpWindowTest, MakesItsCacheAnewWhenItIsDamaged) {
    QTemporaryDir dir;
    const QString copy = copyIn(dir, "copy.qch");
    const QDir folder(cache.path() + QStringLiteral("/tarnwick"));
    const QStringList before = folder.entryList(QDir::Files);
    EXPECT_EQ(show(copy, "STRFIND"), nullptr);
    const QStringList after = folder.entryList(QDir::Files);
    ASSERT_EQ(after.size(), before.size() + 1) << "one collection for a help file, and nothing beside it";
    EXPECT_EQ(show(File, "STRFIND"), nullptr);
    for (const QString& name : after) {
        if (before.contains(name)) continue;
        for (const char* damage : {"", "damaged", "SQLite format 3"}) {
            QFile file(folder.filePath(name));
            ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
            file.write(damage);
            file.close();
            EXPECT_EQ(show(copy, "STRLEFT"), nullptr) << damage;
            EXPECT_EQ(page->documentTitle(), u"STRLEFT");
            EXPECT_EQ(show(File, "STRFIND"), nullptr);
        }
    }
}

TEST_F(HelpWindowTest, NeedsNoPlaceToWriteIn) {
    QTemporaryDir dir;
    const QString copy = copyIn(dir, "other.qch");
    QFile::setPermissions(copy, QFileDevice::ReadOwner);
    qputenv("XDG_CACHE_HOME", "/proc/none");
    EXPECT_EQ(show(copy, "STRMID"), nullptr);
    EXPECT_EQ(page->documentTitle(), u"STRMID");
    EXPECT_EQ(show(File, "STRFIND"), nullptr);
}

TEST_F(HelpWindowTest, ManyMayMakeTheCacheAtOnce) {
    QTemporaryDir dir;
    const QString copy = copyIn(dir, "shared.qch");
    // Others that were killed while they made theirs.
    const QDir folder(cache.path() + QStringLiteral("/tarnwick"));
    QFile left(folder.filePath(QStringLiteral("help-0123456789abcdef.qhc.1")));
    ASSERT_TRUE(left.open(QIODevice::WriteOnly));
    left.close();
    EXPECT_EQ(show(copy, "STRFIND"), nullptr);
    EXPECT_EQ(show(File, "STRFIND"), nullptr);
    EXPECT_EQ(show(copy, "STRLEFT"), nullptr) << "the one that is there is used";
    EXPECT_EQ(page->documentTitle(), u"STRLEFT");
    EXPECT_EQ(show(File, "STRFIND"), nullptr);
}

// ---- the compiled help itself ----

class CompiledHelp : public ::testing::Test {
protected:
    void SetUp() override {
        QHelpEngineCore* made = new QHelpEngineCore(dir.filePath(QStringLiteral("c.qhc")));
        engine.reset(made);
        engine->setReadOnly(false);
        ASSERT_TRUE(engine->setupData());
        ASSERT_TRUE(engine->registerDocumentation(File)) << engine->error().toStdString();
        space = QHelpEngineCore::namespaceName(File);
        files = engine->files(space, QString(), QStringLiteral("htm"));
    }
    QTemporaryDir dir;
    std::unique_ptr<QHelpEngineCore> engine;
    QString space;
    QList<QUrl> files;
};

TEST_F(CompiledHelp, HasEveryTopicOfThePagesForTheBrowser) {
    QFile whole(QStringLiteral(BINARY_DIR "/help/Tarnwick.htm"));
    ASSERT_TRUE(whole.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(whole.readAll());
    const QRegularExpression id(QStringLiteral("<(?:section|a) id=\"([^\"]+)\""));
    int count = 0;
    for (auto hit = id.globalMatch(text); hit.hasNext(); ++count) {
        const QString topic = hit.next().captured(1).toLower().replace(u' ', u'_');
        EXPECT_FALSE(engine->documentsForIdentifier(topic).isEmpty()) << topic.toStdString();
    }
    EXPECT_GE(count, 500);
}

TEST_F(CompiledHelp, LeadsOnlyToPagesAndAnchorsThatAreThere) {
    ASSERT_GE(files.size(), 500);
    const QRegularExpression link(QStringLiteral("href=\"([^\"]+)\""));
    int count = 0;
    for (const QUrl& file : files) {
        const QString text = QString::fromUtf8(engine->fileData(file));
        EXPECT_FALSE(text.isEmpty()) << file.toString().toStdString();
        for (auto hit = link.globalMatch(text); hit.hasNext();) {
            const QUrl to = file.resolved(QUrl(hit.next().captured(1)));
            if (to.path().endsWith(u".css")) continue;
            ++count;
            const QString there = QString::fromUtf8(engine->fileData(to.adjusted(QUrl::RemoveFragment)));
            EXPECT_FALSE(there.isEmpty())
                << file.toString().toStdString() << " " << to.toString().toStdString();
            const bool anchored = !to.hasFragment() || there.contains(u'"' + to.fragment() + u'"');
            EXPECT_TRUE(anchored) << to.toString().toStdString();
        }
    }
    EXPECT_GE(count, 1000);
}

TEST_F(CompiledHelp, HasATitleForEveryPage) {
    for (const QUrl& file : files) {
        const QString text = QString::fromUtf8(engine->fileData(file));
        const QRegularExpressionMatch title =
            QRegularExpression(QStringLiteral("<title>([^<]+)</title>")).match(text);
        EXPECT_TRUE(title.hasMatch()) << file.toString().toStdString();
    }
}

}  // namespace
}  // namespace tarn::help
