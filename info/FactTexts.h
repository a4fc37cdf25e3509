// SPDX-License-Identifier: MIT
// Internal: not installed.
// Declares the texts of the start-up report.
#ifndef ZQFOUNDATION_INFO_FACTTEXTS_H
#define ZQFOUNDATION_INFO_FACTTEXTS_H

#include "foundation/objects/NSDictionary.h"

/// The one-line texts of gathered facts. Each omits what the dictionary lacks.
namespace ZQFoundation::detail {

/// Of `shortApplicationName`, `shortVersionString` and `versionString`; never nil.
NSString applicationText(const NSDictionary& application);

/// Of `osName`, `osVersion` and `osBuild`; never nil.
NSString systemText(const NSDictionary& system);

/// Of `osName` and `osVersion`; nil without either.
NSString systemNameAndVersionText(const NSDictionary& system);

/// Of `model`, `nCores` and `ramMB`, in brackets; nil without any of them.
NSString hardwareText(const NSDictionary& hardware);

} // namespace ZQFoundation::detail

#endif
