// SPDX-License-Identifier: MIT
// The window that moves the notes of release 1.
#ifndef ZQFOUNDATION_WINDOWS_MIGRATIONWINDOW_H
#define ZQFOUNDATION_WINDOWS_MIGRATIONWINDOW_H

#include <atomic>
#include <thread>

#include <QtWidgets/QDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QPushButton>

#include "../model/OldNotes.h"
#include "Texts.h"

namespace notes {

/// Moves old notes on a separate thread, shows the progress, and at the end shows which notes were not moved
/// and why. It can be stopped; closing it stops it too. Accepted when all notes are moved, or when the user
/// decides to leave the others.
class MigrationWindow : public QDialog {
public:
    /// Nothing is moved before `start`.
    MigrationWindow(zq::NSString from, zq::NSString to, QWidget* parent);
    ~MigrationWindow() override;

    /// Begins the move.
    void start();

    /// Ends the move after the current note.
    void stop() { isStopped_ = true; }

    void reject() override;

private:
    void makeWidgets();
    void showProgress(const QString& name, int count);
    void finish(const Move& move);

    zq::NSString from_;
    zq::NSString to_;
    std::thread mover_;
    std::atomic<bool> isStopped_ = false;
    bool isFinished_ = false;
    QLabel* text_ = nullptr;
    QProgressBar* bar_ = nullptr;
    QListWidget* stayed_ = nullptr;
    QPushButton* stopButton_ = nullptr;
    QPushButton* leaveButton_ = nullptr;
    QPushButton* closeButton_ = nullptr;
};

} // namespace notes

#endif
