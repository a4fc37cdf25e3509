// SPDX-License-Identifier: MIT
// Moves the files of earlier releases of Viewer to their present places.
#ifndef ZQFOUNDATION_VIEWER_OLDDATA_H
#define ZQFOUNDATION_VIEWER_OLDDATA_H

/// Moves what earlier releases of Viewer kept at the top of the home folder to its present place:
///
///     ~/.viewerrc             ~/Library/Application Support/Example/Viewer/Settings.conf
///     ~/.viewer               ~/Library/Application Support/Example/Viewer/Documents
///     ~/Viewer Notes/*.note   ~/Library/Application Support/Example/Viewer/Notes, subfolders kept
///
/// Does nothing if there are no old files. What cannot be moved stays where it is; the log and the terminal
/// say so, and the next start tries again.
void migrateOldData();

#endif
