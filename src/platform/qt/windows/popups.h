// SPDX-License-Identifier: Apache-2.0
//
// The small window that stands apart from the model: the progress of a tool with its Stop button.
#pragma once

#include <QTimer>
#include <QWidget>

#include <functional>
#include <string>

class QLabel;
class QPushButton;

namespace tarn::platform::qt {

// Appears when its text has stood for 300 ms, so that short tools do not flash.
class ToolProgress : public QWidget {
public:
    ToolProgress();
    void setText(const std::string& text);  // empty hides it
    [[nodiscard]] bool stopPressed() const { return stopped_; }
    std::function<void()> gone;  // after the window with the focus has been hidden

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;  // Esc and Return are Stop

private:
    QLabel* label_;
    QPushButton* stop_;
    QTimer delay_;
    bool stopped_ = false;
};

}  // namespace tarn::platform::qt
