// SPDX-License-Identifier: MIT
// The window that shows which application runs, on which system, and with which switches.
#ifndef ZQFOUNDATION_WINDOWS_ABOUTWINDOW_H
#define ZQFOUNDATION_WINDOWS_ABOUTWINDOW_H

#include <functional>

#include <QtCore/QUrl>
#include <QtGui/QDesktopServices>
#include <QtWidgets/QDialog>
#include <QtWidgets/QPlainTextEdit>

namespace notes {

/// Shows the start-up report, copies it, and opens the folder of the log files.
class AboutWindow : public QDialog {
public:
    /// `open` shows a folder to the user; false when it cannot.
    explicit AboutWindow(QWidget* parent, std::function<bool(const QUrl&)> open = QDesktopServices::openUrl);

private:
    void copyReport();
    void openLogFolder();

    std::function<bool(const QUrl&)> open_;
    QPlainTextEdit* report_ = nullptr;
};

} // namespace notes

#endif
