// SPDX-License-Identifier: Apache-2.0
//
// The clipboard of another program, on a real X server. Without arguments this is the test, which starts itself as that
// program: `foreign_clipboard own BYTES` keeps a text of so many bytes on the clipboard until it is ended.
#include "os/process.h"
#include "platform/model/view.h"
#include "platform/windowing.h"
#include "support/resources.h"
#include "support/tempfolder.h"
#include "ui/shownwindow.h"
#include "ui/typing.h"

#include <QApplication>
#include <QClipboard>
#include <QElapsedTimer>
#include <QMimeData>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <unistd.h>

namespace {

using namespace tarn;
using platform::Object;

int failures = 0;

void expect(bool good, const char* what) {
    std::printf("%s  %s\n", good ? "ok  " : "FAIL", what);
    failures += good ? 0 : 1;
}

constexpr char Resources[] = "Code EDITWINDOW\n CAPTION=\"Code\"\n POSITION=10 20 200 100\nEND\n";
const Object Code("Code");

void loadWindow() {
    const TempFolder folder;
    expect(useResources(folder, Resources).empty(), "there are resources");
    expect(platform::Load(Code) == platform::Ok, "there is a window");
    platform::Show(Code, false);
    platform::DoEvents();
}

// Ctrl+V in the window. The result is its text, which is emptied.
std::string paste(qint64& milliseconds) {
    QElapsedTimer clock;
    clock.start();
    sendKey(shownEditor("Code"), Qt::Key_V, Qt::ControlModifier);
    milliseconds = clock.elapsed();
    std::string text = platform::GetText(Code).value;
    std::printf("      %zu bytes in %lld ms\n", text.size(), static_cast<long long>(milliseconds));
    platform::SetText(Code, "");
    return text;
}

int own(int argc, char** argv) {
    QApplication application(argc, argv);
    QGuiApplication::clipboard()->setText(QString(std::atoi(argv[2]), u'x') + QStringLiteral("\u00E9\n"));
    std::puts("owning");
    std::fflush(stdout);
    return QApplication::exec();
}

class Owner {
public:
    explicit Owner(int bytes) {
        os::StartError error{};
        child_ = os::processes().start({os::executablePath(), {"own", std::to_string(bytes)}, "", ""}, error);
        for (int i = 0; i < 400 && !hasClipboard(); i++) {
            usleep(50000);
            platform::DoEvents();
        }
    }
    ~Owner() {
        if (child_ != nullptr) child_->stop(0);
        for (int i = 0; i < 100 && hasClipboard(); i++) {
            usleep(50000);
            platform::DoEvents();
        }
    }
    Owner(const Owner&) = delete;
    Owner& operator=(const Owner&) = delete;
    void freeze() const { ::kill(child_->id(), SIGSTOP); }

private:
    static bool hasClipboard() {
        const QClipboard* board = QGuiApplication::clipboard();
        return !board->ownsClipboard() && board->mimeData() != nullptr && board->mimeData()->hasText();
    }

    std::unique_ptr<os::Child> child_;
};

std::string read(qint64& milliseconds) {
    QElapsedTimer clock;
    clock.start();
    std::string text = platform::GetText(platform::Sysclipboard).value;
    milliseconds = clock.elapsed();
    std::printf("      %zu bytes in %lld ms\n", text.size(), static_cast<long long>(milliseconds));
    return text;
}

}  // namespace

int main(int argc, char** argv) {
    os::setCommandLine(argc, argv);
    if (argc > 2) return own(argc, argv);
    loadWindow();
    qint64 time = 0;
    platform::SetText(platform::Sysclipboard, "own \xFF");
    platform::DoEvents();
    expect(read(time) == "own \xFF", "this program's own text keeps its bytes");
    {
        const Owner owner(10);
        expect(read(time) == "xxxxxxxxxx\xC3\xA9\n", "a text comes as it is");
        expect(paste(time) == "xxxxxxxxxx\xC3\xA9\n", "and by the key");
        platform::SetText(Code, "\r\n");
        expect(paste(time) == "xxxxxxxxxx\xC3\xA9\r\n\r\n", "with the line ends of the text");
    }
    {
        const Owner owner(1000000);
        expect(read(time) == std::string(1000000, 'x') + "\xC3\xA9\n",
               "a text in several pieces comes whole");
    }
    {
        const Owner owner(100000000);
        expect(read(time).size() == 4096001, "of 100,000,000 bytes come those that a text can hold");
        expect(time < 2500, "in a fraction of the time that all of it takes");
        expect(paste(time).empty() && time < 2500, "which the key refuses");
        owner.freeze();
        expect(read(time).empty() && time < 2000, "a program that does not answer has no text");
    }
    return failures == 0 ? 0 : 1;
}
