// SPDX-License-Identifier: MIT
// About Notes.
#include "AboutWindow.h"

#include <QtGui/QClipboard>
#include <QtGui/QFontDatabase>
#include <QtGui/QGuiApplication>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

#include "../model/Report.h"
#include "Texts.h"

namespace notes {

AboutWindow::AboutWindow(QWidget* parent, std::function<bool(const QUrl&)> open)
    : QDialog(parent), open_(std::move(open)) {
    setWindowTitle(localized("About Notes"));
    resize(760, 320);
    auto* const name = new QLabel(zq::ZQLogInfo::appInfoString().as<QString>());
    name->setObjectName("name");
    report_ = new QPlainTextEdit(startupReport().as<QString>());
    report_->setObjectName("report");
    report_->setReadOnly(true);
    report_->setLineWrapMode(QPlainTextEdit::NoWrap);
    report_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));

    auto* const buttons = new QDialogButtonBox;
    QPushButton* const copy = buttons->addButton(localized("Copy report"), QDialogButtonBox::ActionRole);
    copy->setObjectName("copy");
    QPushButton* const folder =
        buttons->addButton(localized("Open log folder"), QDialogButtonBox::ActionRole);
    folder->setObjectName("folder");
    buttons->addButton(localized("Close"), QDialogButtonBox::RejectRole);

    auto* const column = new QVBoxLayout(this);
    column->addWidget(name);
    column->addWidget(report_);
    column->addWidget(buttons);
    connect(copy, &QPushButton::clicked, this, [this] { copyReport(); });
    connect(folder, &QPushButton::clicked, this, [this] { openLogFolder(); });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void AboutWindow::copyReport() { QGuiApplication::clipboard()->setText(report_->toPlainText()); }

void AboutWindow::openLogFolder() {
    const zq::NSString folder = zq::ZQLog::standardLogFolder();
    if (!open_(QUrl::fromLocalFile(folder.as<QString>()))) {
        zq::ZQLog::logWithFormat("the folder cannot be opened: %@", folder);
    }
}

} // namespace notes
