// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_TEXT_EXPORT_H
#define ZQFOUNDATION_TEXT_EXPORT_H

/// Marks what the shared library exports; everything else stays hidden.
#define ZQFOUNDATION_EXPORT __attribute__((visibility("default")))

#endif
