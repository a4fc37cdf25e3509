// SPDX-License-Identifier: MIT
// Moves old notes and shows the progress.
#include "MigrationWindow.h"

#include <QtCore/QMetaObject>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QVBoxLayout>

namespace notes {

namespace {

/// Passes the progress on to a function, and stops when the flag is set.
template <class OnItem>
class Observer : public zq::ZQMigrationObserver {
public:
    Observer(const std::atomic<bool>& isStopped, OnItem onItem)
        : isStopped_(isStopped), onItem_(std::move(onItem)) {}

    bool migrationMayContinue(const zq::ZQMigrationProgress& progress) override {
        onItem_(progress);
        return !isStopped_;
    }

private:
    const std::atomic<bool>& isStopped_;
    OnItem onItem_;
};

} // namespace

MigrationWindow::MigrationWindow(zq::NSString from, zq::NSString to, QWidget* parent)
    : QDialog(parent), from_(std::move(from)), to_(std::move(to)) {
    setWindowTitle(localized("Notes of an earlier release"));
    resize(520, 120);
    makeWidgets();
}

MigrationWindow::~MigrationWindow() {
    stop();
    if (mover_.joinable()) {
        mover_.join();
    }
}

void MigrationWindow::makeWidgets() {
    text_ = new QLabel(localized("Moving notes from %@", from_));
    text_->setObjectName("text");
    text_->setTextFormat(Qt::PlainText);
    text_->setWordWrap(true);
    bar_ = new QProgressBar;
    bar_->setObjectName("bar");
    stayed_ = new QListWidget;
    stayed_->setObjectName("stayed");
    stopButton_ = new QPushButton(localized("Stop"));
    stopButton_->setObjectName("stop");
    leaveButton_ = new QPushButton(localized("Leave them there"));
    leaveButton_->setObjectName("leave");
    closeButton_ = new QPushButton(localized("Close"));
    closeButton_->setObjectName("close");

    auto* const buttons = new QHBoxLayout;
    buttons->addStretch();
    for (QPushButton* const button : {stopButton_, leaveButton_, closeButton_}) {
        buttons->addWidget(button);
    }
    auto* const column = new QVBoxLayout(this);
    column->addWidget(text_);
    column->addWidget(bar_);
    column->addWidget(stayed_);
    column->addLayout(buttons);
    stayed_->hide();
    leaveButton_->hide();
    closeButton_->hide();

    connect(stopButton_, &QPushButton::clicked, this, [this] { stop(); });
    connect(leaveButton_, &QPushButton::clicked, this, &QDialog::accept);
    connect(closeButton_, &QPushButton::clicked, this, &QDialog::reject);
}

void MigrationWindow::start() {
    bar_->setMaximum(static_cast<int>(countOldNotes(from_)));
    mover_ = std::thread([this] {
        const auto showItem = [this](const zq::ZQMigrationProgress& progress) {
            QMetaObject::invokeMethod(
                this,
                [this, name = progress.path.as<QString>(), count = static_cast<int>(progress.items)] {
                    showProgress(name, count);
                },
                Qt::QueuedConnection);
        };
        Observer observer(isStopped_, showItem);
        const Move move = moveOldNotes(from_, to_, &observer);
        QMetaObject::invokeMethod(
            this, [this, move] { finish(move); }, Qt::QueuedConnection);
    });
}

void MigrationWindow::showProgress(const QString& name, int count) {
    bar_->setValue(count);
    text_->setText(localized("Moving note %d of %d: %@", count, bar_->maximum(), name));
}

void MigrationWindow::finish(const Move& move) {
    isFinished_ = true;
    for (const Stayed& each : move.stayed) {
        stayed_->addItem((each.name + ": " + each.reason).as<QString>());
    }
    if (move.left == 0 && move.stayed.empty()) {
        accept();
        return;
    }
    text_->setText(move.isStopped
                       ? localized("Stopped: %zu notes are moved, %zu are left. The next start continues.",
                                   move.moved, move.left)
                       : localized("%zu notes are moved. These stay in %@; the next start tries again.",
                                   move.moved, from_));
    stayed_->setVisible(!move.stayed.empty());
    resize(width(), move.stayed.empty() ? height() : 280);
    stopButton_->hide();
    closeButton_->show();
    leaveButton_->setVisible(!move.isStopped);
}

/// When the move ends, the window stays open, so that the user can see what is left.
void MigrationWindow::reject() {
    if (isFinished_ || !mover_.joinable()) {
        QDialog::reject();
    } else {
        stop();
    }
}

} // namespace notes
