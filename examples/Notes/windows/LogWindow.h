// SPDX-License-Identifier: MIT
// The window with the lines of the log and the switches of the trace keys.
#ifndef ZQFOUNDATION_WINDOWS_LOGWINDOW_H
#define ZQFOUNDATION_WINDOWS_LOGWINDOW_H

#include <atomic>
#include <string>
#include <vector>

#include <QtWidgets/QDialog>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPlainTextEdit>

#include "Texts.h"

namespace notes {

/// Shows the log's lines as they are written, those that a filter lets through.
class LogWindow : public QDialog {
public:
    explicit LogWindow(QWidget* parent);
    ~LogWindow() override;

private:
    void makeWidgets();
    void linesCame();
    void showNewLines();
    void showAllLines();

    QLineEdit* filter_ = nullptr;
    QPlainTextEdit* lines_ = nullptr;
    std::size_t next_ = 0;
    std::atomic<bool> isWaiting_ = false; ///< for the window's thread to show new lines
};

} // namespace notes

#endif
