// SPDX-License-Identifier: MIT
// The main window.
#include "MainWindow.h"

#include <QtCore/QSignalBlocker>
#include <QtGui/QCloseEvent>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSplitter>
#include <QtWidgets/QStatusBar>
#include <QtWidgets/QVBoxLayout>

#include "../model/Settings.h"
#include "AboutWindow.h"
#include "LogWindow.h"
#include "MigrationWindow.h"
#include "SettingsWindow.h"

namespace notes {

namespace {

constexpr int pathRole = Qt::UserRole;
constexpr int savingDelay = 1000; // milliseconds

/// What the editor holds, unit by unit; `toPlainText` would turn no-break spaces into spaces.
QString textOf(const QPlainTextEdit& editor) {
    return editor.document()->toRawText().replace(QChar::ParagraphSeparator, QChar::LineFeed);
}

} // namespace

MainWindow::MainWindow(NoteStore& store) : store_(store) {
    setWindowTitle(localized("Notes"));
    resize(820, 520);
    makeWidgets();
    makeMenus();
    applySettings();
    open(nullptr);
    reload();
}

void MainWindow::makeWidgets() {
    search_ = new QLineEdit;
    search_->setObjectName("search");
    search_->setPlaceholderText(localized("Search"));
    search_->setClearButtonEnabled(true);
    list_ = new QListWidget;
    list_->setObjectName("list");
    editor_ = new QPlainTextEdit;
    editor_->setObjectName("editor");
    status_ = new QLabel;
    status_->setObjectName("status");
    status_->setTextFormat(Qt::PlainText);
    saving_ = new QTimer(this);
    saving_->setObjectName("saving");
    saving_->setSingleShot(true);
    saving_->setInterval(savingDelay);

    auto* const left = new QWidget;
    auto* const column = new QVBoxLayout(left);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(search_);
    column->addWidget(list_);
    auto* const splitter = new QSplitter;
    splitter->addWidget(left);
    splitter->addWidget(editor_);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({260, 560});
    setCentralWidget(splitter);
    statusBar()->addWidget(status_, 1);

    connect(search_, &QLineEdit::textChanged, this, [this] { showList(); });
    // Later, when the list is done: selecting may save, and then the list is rebuilt.
    connect(
        list_, &QListWidget::currentItemChanged, this, [this] { select(); }, Qt::QueuedConnection);
    connect(editor_->document(), &QTextDocument::contentsChanged, saving_, qOverload<>(&QTimer::start));
    connect(saving_, &QTimer::timeout, this, [this] { save(); });
}

QAction* MainWindow::addAction(QMenu* menu, const char* name, const QKeySequence& keys,
                               void (MainWindow::*action)()) {
    QAction* const entry = menu->addAction(localized(name));
    entry->setObjectName(name);
    entry->setShortcut(keys);
    connect(entry, &QAction::triggered, this, [this, action] { (this->*action)(); });
    return entry;
}

void MainWindow::makeMenus() {
    QMenu* const note = menuBar()->addMenu(localized("&Note"));
    addAction(note, "&New", QKeySequence::New, &MainWindow::addNote);
    addAction(note, "&Save", QKeySequence::Save, &MainWindow::saveNow);
    addAction(note, "&Remove", QKeySequence("Ctrl+Backspace"), &MainWindow::removeNote);
    note->addSeparator();
    addAction(note, "Se&ttings...", QKeySequence::Preferences, &MainWindow::openSettings);
    addAction(note, "&Quit", QKeySequence::Quit, &MainWindow::quit);
    QMenu* const help = menuBar()->addMenu(localized("&Help"));
    addAction(help, "&Log", QKeySequence("Ctrl+L"), &MainWindow::openLog);
    addAction(help, "&About Notes", {}, &MainWindow::openAbout);
}

void MainWindow::applySettings() {
    const settings::Values values = settings::current();
    QFont font = editor_->font();
    font.setPointSize(values.fontSize);
    editor_->setFont(font);
    editor_->setLineWrapMode(values.wrapsLines ? QPlainTextEdit::WidgetWidth : QPlainTextEdit::NoWrap);
}

/// A release looks for notes of earlier ones until all are moved, or until the user decides to leave those
/// that cannot be moved.
void MainWindow::takeOverOldNotes() {
    if (!settings::needsMove()) {
        return;
    }
    const zq::NSString from = oldNotesFolder();
    const bool isSameFolder =
        from.stringByResolvingSymlinksInPath() == store_.folder().stringByResolvingSymlinksInPath();
    if (isSameFolder || countOldNotes(from) == 0) {
        settings::rememberMove();
        return;
    }
    auto* const window = new MigrationWindow(from, store_.folder(), this);
    window->setObjectName("migration");
    window->setAttribute(Qt::WA_DeleteOnClose);
    connect(window, &QDialog::finished, this, [this](int result) {
        if (result == QDialog::Accepted) {
            settings::rememberMove();
        }
        reload();
    });
    window->open();
    window->start();
}

void MainWindow::reload() {
    store_.reload();
    showList();
}

/// The notes that the search finds; the one in the editor stays there.
void MainWindow::showList() {
    const QSignalBlocker quiet(list_);
    list_->clear();
    const auto found = store_.matching(search_->text());
    for (const Note* const note : found) {
        auto* const item = new QListWidgetItem(note->title.as<QString>(), list_);
        item->setData(pathRole, note->path.as<QString>());
        if (note->path == path_) {
            list_->setCurrentItem(item);
        }
    }
    status_->setText(localized("%zu of %zu notes", found.size(), store_.notes().size()));
}

/// A text that the editor would not write back unchanged is shown read-only.
void MainWindow::open(const zq::NSString& path) {
    const Note* const note = store_.find(path);
    const QString text = note != nullptr ? note->text.as<QString>() : QString("");
    path_ = note != nullptr ? path : zq::NSString();
    editor_->setPlainText(text);
    editor_->setReadOnly(text.isNull() || textOf(*editor_) != text);
    editor_->document()->setModified(false);
    saving_->stop();
    showList();
    if (editor_->isReadOnly()) {
        status_->setText(localized("The editor cannot show all of this note, so it is read-only."));
    }
}

void MainWindow::select() {
    const QListWidgetItem* const item = list_->currentItem();
    const zq::NSString path =
        item != nullptr ? zq::NSString(item->data(pathRole).toString()) : zq::NSString();
    if (path == path_) {
        return;
    }
    if (save()) {
        open(path);
    } else {
        const QString reason = status_->text();
        showList(); // the editor's note is the current one again
        status_->setText(reason);
    }
}

bool MainWindow::save() {
    saving_->stop();
    const QString text = textOf(*editor_);
    if (!editor_->document()->isModified() || (!path_ && text.trimmed().isEmpty())) {
        return true;
    }
    const zq::NSString before = path_;
    const Outcome outcome = store_.save(before, text);
    if (!outcome.path) {
        status_->setText(localized("Not saved: %@", outcome.reason));
        return false;
    }
    path_ = outcome.path;
    editor_->document()->setModified(false);
    showList();
    if (before && before != path_) {
        status_->setText(
            localized("The note was changed elsewhere. Your version is %@.", path_.lastPathComponent()));
    }
    return true;
}

void MainWindow::addNote() {
    if (save()) {
        search_->clear();
        open(nullptr);
        editor_->setFocus();
    }
}

void MainWindow::removeNote() {
    if (!save() || !path_) {
        return;
    }
    const Outcome outcome = store_.remove(path_);
    if (outcome.path) {
        open(nullptr);
    } else {
        status_->setText(localized("Not removed: %@", outcome.reason));
    }
}

void MainWindow::openSettings() {
    SettingsWindow window(this);
    if (window.exec() == QDialog::Accepted) {
        applySettings();
        status_->setText(window.failure());
    }
}

void MainWindow::openLog() {
    if (!log_) {
        log_ = new LogWindow(this);
    }
    log_->show();
    log_->raise();
}

void MainWindow::openAbout() { AboutWindow(this).exec(); }

void MainWindow::closeEvent(QCloseEvent* event) {
    if (save()) {
        return;
    }
    QMessageBox question(QMessageBox::Warning, windowTitle(),
                         status_->text() + "\n" + localized("Close anyway?"));
    QPushButton* const discard = question.addButton(localized("Discard"), QMessageBox::DestructiveRole);
    question.setDefaultButton(question.addButton(localized("Cancel"), QMessageBox::RejectRole));
    question.exec();
    event->setAccepted(question.clickedButton() == discard);
}

} // namespace notes
