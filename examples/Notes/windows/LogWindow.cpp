// SPDX-License-Identifier: MIT
// The log window.
#include "LogWindow.h"

#include <QtCore/QMetaObject>
#include <QtGui/QFontDatabase>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QVBoxLayout>

#include "../model/LogLines.h"
#include "../model/Search.h"
#include "TracePanel.h"

namespace notes {

LogWindow::LogWindow(QWidget* parent) : QDialog(parent) {
    setWindowTitle(localized("Log"));
    resize(1100, 360);
    makeWidgets();
    showAllLines();
    lines_->moveCursor(QTextCursor::StartOfLine); // long lines are shown from their beginning
    LogLines::shared().setListener([this] { linesCame(); });
}

LogWindow::~LogWindow() { LogLines::shared().setListener({}); }

void LogWindow::makeWidgets() {
    filter_ = new QLineEdit;
    filter_->setObjectName("filter");
    filter_->setPlaceholderText(localized("Filter"));
    filter_->setClearButtonEnabled(true);
    lines_ = new QPlainTextEdit;
    lines_->setObjectName("lines");
    lines_->setReadOnly(true);
    lines_->setLineWrapMode(QPlainTextEdit::NoWrap);
    lines_->setMaximumBlockCount(static_cast<int>(LogLines::maxCount));
    lines_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));

    auto* const left = new QVBoxLayout;
    left->addWidget(filter_);
    left->addWidget(lines_);
    auto* const row = new QHBoxLayout(this);
    row->addLayout(left, 1);
    row->addWidget(new TracePanel);
    connect(filter_, &QLineEdit::textChanged, this, [this] { showAllLines(); });
}

/// In the thread that logged: many lines are shown at once.
void LogWindow::linesCame() {
    if (!isWaiting_.exchange(true)) {
        QMetaObject::invokeMethod(
            this, [this] { showNewLines(); }, Qt::QueuedConnection);
    }
}

void LogWindow::showNewLines() {
    isWaiting_ = false;
    std::vector<std::string> fresh;
    next_ = LogLines::shared().copySince(next_, fresh);
    const zq::NSArray words = folded(filter_->text()).componentsSeparatedByWhitespace();
    for (const std::string& line : fresh) {
        if (holdsAll(folded(line), words)) {
            lines_->appendPlainText(QString::fromStdString(line));
        }
    }
}

void LogWindow::showAllLines() {
    lines_->clear();
    next_ = 0;
    showNewLines();
}

} // namespace notes
