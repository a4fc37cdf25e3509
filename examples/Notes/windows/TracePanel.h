// SPDX-License-Identifier: MIT
// The switches of the trace keys.
#ifndef ZQFOUNDATION_WINDOWS_TRACEPANEL_H
#define ZQFOUNDATION_WINDOWS_TRACEPANEL_H

#include <QtWidgets/QCheckBox>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QLabel>

#include "Texts.h"

namespace notes {

/// A switch for each trace key of Notes. It takes effect at once and is saved; if the command line or the
/// environment overrides it, the switch moves back and a text says so.
class TracePanel : public QGroupBox {
public:
    TracePanel();

private:
    void turn(QCheckBox* box, const char* key, bool isOn);

    QLabel* status_ = nullptr;
};

} // namespace notes

#endif
