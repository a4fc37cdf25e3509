// SPDX-License-Identifier: MIT
// The settings window.
#include "SettingsWindow.h"

#include <algorithm>

#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QPushButton>

#include "../model/Settings.h"
#include "Texts.h"

namespace notes {

SettingsWindow::SettingsWindow(QWidget* parent) : QDialog(parent) {
    setWindowTitle(localized("Settings"));
    const settings::Values values = settings::current();
    fontSize_ = new QSpinBox;
    fontSize_->setObjectName("fontSize");
    fontSize_->setRange(settings::minFontSize, settings::maxFontSize);
    fontSize_->setValue(values.fontSize);
    wrapLines_ = new QCheckBox(localized("Wrap long lines"));
    wrapLines_->setObjectName("wrapLines");
    wrapLines_->setChecked(values.wrapsLines);
    language_ = new QComboBox;
    language_->setObjectName("language");
    language_->addItem(localized("System language"));
    language_->addItem("English", "en");
    language_->addItem("Deutsch", "de");
    language_->setCurrentIndex(
        std::max(0, language_->findData(zq::NSObject(values.language).as<QVariant>())));

    auto* const buttons = new QDialogButtonBox;
    buttons->addButton(localized("Save"), QDialogButtonBox::AcceptRole)->setObjectName("save");
    buttons->addButton(localized("Cancel"), QDialogButtonBox::RejectRole);
    auto* const form = new QFormLayout(this);
    form->addRow(localized("Font size in points"), fontSize_);
    form->addRow(wrapLines_);
    form->addRow(localized("Language (at the next start)"), language_);
    form->addRow(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &SettingsWindow::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

void SettingsWindow::accept() {
    const zq::NSString reason = settings::save({.fontSize = fontSize_->value(),
                                                .wrapsLines = wrapLines_->isChecked(),
                                                .language = language_->currentData().toString()});
    failure_ = reason ? localized("Not saved: %@", reason) : QString();
    QDialog::accept();
}

} // namespace notes
