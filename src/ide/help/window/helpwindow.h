// SPDX-License-Identifier: GPL-3.0-or-later
//
// The help window: contents, index and search beside the page. There is one, which later requests use again; it is
// never modal, and can be worked while a dialog of the program waits. All of it can be worked from the keyboard.
#pragma once

#include "ide/help/helplibrary.h"
#include "ide/help/window/page.h"
#include "ide/help/window/search.h"

#include <QDateTime>
#include <QMainWindow>
#include <QPointer>
#include <QTimer>

#include <functional>

class QAction;
class QLabel;
class QLineEdit;
class QListWidget;
class QSplitter;
class QTabWidget;
class QToolBar;

namespace tarn::help {

class HelpWindow : public QMainWindow {
public:
    // What the window asks the environment for: see Request.
    HelpWindow(std::function<void(const QString&)> keepPlace,
               std::function<bool(const QString&, PrintTarget&)> choosePrinter);
    ~HelpWindow() override;

    // Empty, or why the file cannot be shown. A file that is shown already, and has not changed, is not read again.
    QString useFile(const QString& file);
    void showTopic(const QString& topic);
    void bringUp();
    void setPlace(const QString& place);  // as `keepPlace` got it

protected:
    void closeEvent(QCloseEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    enum Tab { ContentsTab, IndexTab, SearchTab };  // of the side

    void makeTools();
    void makeKeys();
    QAction* addTool(QToolBar& bar, const QString& name, const QString& keys, const QString& tip,
                     std::function<void()> act);
    void addKey(const QString& keys, std::function<void()> act);
    QWidget* makeReading();
    QWidget* makeContents();
    QWidget* makeIndex();
    QWidget* makeSearch();
    QWidget* makeFindBar();
    void fillSide();
    void search(const QString& words);
    QString chapterOf(const QUrl& page) const;
    void showHit(int row);
    void tellNotPrinted(const QString& where);
    void showNotFound(const QString& topic);
    void focusSide(int tab);
    void openFind();
    void closeFind();
    void findText(bool backward);
    void print();
    void pageChanged(const QUrl& url);
    void markContents();
    QString place() const;

    std::function<void(const QString&)> keepPlace_;
    std::function<bool(const QString&, PrintTarget&)> choosePrinter_;
    QString file_;
    QDateTime fileTime_;
    QUrl shown_;
    std::unique_ptr<Collection> collection_;
    std::unique_ptr<Search> search_;
    std::vector<Hit> hits_;
    QSplitter* split_ = nullptr;
    QTabWidget* side_ = nullptr;
    QPointer<QWidget> contents_, index_;
    QLineEdit *indexLine_ = nullptr, *searchLine_ = nullptr, *findLine_ = nullptr;
    QListWidget* found_ = nullptr;
    QLabel *count_ = nullptr, *findState_ = nullptr;
    QWidget* findBar_ = nullptr;
    QAction *back_ = nullptr, *forward_ = nullptr;
    Page* page_ = nullptr;
    QTimer placeTimer_;
};

}  // namespace tarn::help
