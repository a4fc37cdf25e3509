// SPDX-License-Identifier: MIT
// The window of the settings.
#ifndef ZQFOUNDATION_WINDOWS_SETTINGSWINDOW_H
#define ZQFOUNDATION_WINDOWS_SETTINGSWINDOW_H

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDialog>
#include <QtWidgets/QSpinBox>

namespace notes {

/// Changes and saves the settings when it is accepted.
class SettingsWindow : public QDialog {
public:
    explicit SettingsWindow(QWidget* parent);

    /// Why the settings apply to this run only; empty when they are saved.
    const QString& failure() const { return failure_; }

    void accept() override;

private:
    QSpinBox* fontSize_ = nullptr;
    QCheckBox* wrapLines_ = nullptr;
    QComboBox* language_ = nullptr;
    QString failure_;
};

} // namespace notes

#endif
