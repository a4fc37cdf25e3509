// SPDX-License-Identifier: MIT
// Switching trace keys.
#include "TracePanel.h"

#include <QtCore/QSignalBlocker>
#include <QtWidgets/QVBoxLayout>

#include "../model/Settings.h"
#include "../model/TraceKeys.h"

namespace notes {

TracePanel::TracePanel() : QGroupBox(localized("Trace keys")) {
    auto* const column = new QVBoxLayout(this);
    for (const char* const key : traceKeyNames) {
        auto* const box = new QCheckBox(key);
        box->setObjectName(key);
        box->setToolTip(localized(key));
        box->setChecked(zq::ZQLog::traceKeyIsEnabled(key));
        connect(box, &QCheckBox::toggled, this, [this, box, key](bool isOn) { turn(box, key, isOn); });
        column->addWidget(box);
    }
    status_ = new QLabel;
    status_->setObjectName("status");
    status_->setTextFormat(Qt::PlainText);
    status_->setWordWrap(true);
    status_->setFixedWidth(170);
    column->addWidget(status_);
    column->addStretch();
}

void TracePanel::turn(QCheckBox* box, const char* key, bool isOn) {
    const zq::NSString reason = settings::setTraceKey(key, isOn);
    const bool isOnNow = zq::ZQLog::traceKeyIsEnabled(key);
    status_->setText(reason            ? localized("Not saved: %@", reason)
                     : isOnNow != isOn ? localized("The command line decides about %@ in this run.", key)
                                       : QString());
    const QSignalBlocker quiet(box);
    box->setChecked(isOnNow);
}

} // namespace notes
