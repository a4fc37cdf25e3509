// SPDX-License-Identifier: MIT
// The window with the list of notes, the search and the editor.
#ifndef ZQFOUNDATION_WINDOWS_MAINWINDOW_H
#define ZQFOUNDATION_WINDOWS_MAINWINDOW_H

#include <QtCore/QPointer>
#include <QtCore/QTimer>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListWidget>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QPlainTextEdit>

#include "../model/NoteStore.h"
#include "Texts.h"

namespace notes {

/// Shows, finds and edits the notes of a store. A change is saved a second later, and whenever another note
/// is opened or the window is closed; what cannot be saved stays in the editor.
class MainWindow : public QMainWindow {
public:
    /// The store must outlive the window.
    explicit MainWindow(NoteStore& store);

    /// Reads the notes from the disk again.
    void reload();

    /// Moves the notes of an earlier release, in a window, unless that was done before.
    void takeOverOldNotes();

    /// Shows the notes in which these words occur, as if the user had typed them.
    void search(const QString& words) { search_->setText(words); }

    /// Saves the text of the editor. False, with the reason in the status bar, when that fails.
    bool save();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void makeMenus();
    QAction* addAction(QMenu* menu, const char* name, const QKeySequence& keys, void (MainWindow::*action)());
    void makeWidgets();
    void applySettings();
    void showList();
    void open(const zq::NSString& path);
    void select();
    void addNote();
    void saveNow() { save(); }
    void removeNote();
    void openSettings();
    void openLog();
    void openAbout();
    void quit() { close(); }

    NoteStore& store_;
    zq::NSString path_; ///< of the note in the editor; nil for a new one
    QListWidget* list_ = nullptr;
    QLineEdit* search_ = nullptr;
    QPlainTextEdit* editor_ = nullptr;
    QLabel* status_ = nullptr;
    QTimer* saving_ = nullptr;
    QPointer<QWidget> log_;
};

} // namespace notes

#endif
