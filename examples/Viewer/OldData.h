// SPDX-License-Identifier: MIT
// The files of earlier releases of Viewer, and their move to today's places.
#ifndef ZQFOUNDATION_VIEWER_OLDDATA_H
#define ZQFOUNDATION_VIEWER_OLDDATA_H

/// Moves what earlier releases of Viewer kept at the top of the home folder to where it belongs today:
///
///     ~/.viewerrc             ~/Library/Application Support/Example/Viewer/Settings.conf
///     ~/.viewer               ~/Library/Application Support/Example/Viewer/Documents
///     ~/Viewer Notes/*.note   ~/Library/Application Support/Example/Viewer/Notes, subfolders kept
///
/// Does nothing when there is nothing old. What cannot be moved stays where it is: the log and the terminal
/// say so, and the next start tries again.
void migrateOldData();

#endif
