// SPDX-License-Identifier: MIT
// The notes of a folder: one file each, UTF-8 text, named "<title>.note".
#ifndef ZQFOUNDATION_MODEL_NOTESTORE_H
#define ZQFOUNDATION_MODEL_NOTESTORE_H

#include <vector>

#include <ZQFoundation/ZQFoundation.h>

namespace notes {

namespace zq = ZQFoundation;

/// One note as it was last read or written.
struct Note {
    zq::NSString path;   ///< its file
    zq::NSString text;   ///< nil if the file is not UTF-8 text, is too large or cannot be read
    zq::NSString title;  ///< the first line that is not blank, else the file's name
    zq::NSString folded; ///< the text as a search sees it
    zq::NSDate changed;  ///< when the file was last changed
};

/// The result of saving or removing.
struct Outcome {
    zq::NSString path;   ///< where the note is now; nil when nothing was done
    zq::NSString reason; ///< why nothing was done, in the user's language
};

/// The notes below a folder, including subfolders, except items whose names begin with ".". For one thread.
///
/// A text that was saved is never lost: it is written to a new file beside the note, flushed to the disk and
/// renamed, so the note has the old text or the new one whatever happens; a file that somebody else has
/// changed meanwhile is not overwritten; a removed note goes to a hidden folder.
class NoteStore {
public:
    /// Only `reload` reads notes. The folder is created when a note is saved.
    explicit NoteStore(zq::NSString folder) : folder_(std::move(folder)) {}

    /// Reads all notes again.
    void reload();

    /// The notes, those changed last first.
    const std::vector<Note>& notes() const { return notes_; }

    /// The note in that file, null when there is none. Valid until something is saved, removed or read again.
    const Note* find(const zq::NSString& path) const;

    /// The notes in which each word of the query occurs, whatever the case and the accents, in their order.
    std::vector<const Note*> matching(const zq::NSString& query) const;

    /// Saves the text as that note, or as a new one for a nil path. It is a new one too when the file is no
    /// longer what was read.
    [[nodiscard]] Outcome save(const zq::NSString& path, const zq::NSString& text);

    /// Moves the note to the folder of removed notes.
    [[nodiscard]] Outcome remove(const zq::NSString& path);

    /// The folder of the notes.
    const zq::NSString& folder() const { return folder_; }

private:
    static Outcome replace(const zq::NSString& path, const zq::NSString& draft);
    Outcome addAs(const zq::NSString& name, const zq::NSString& draft);
    void keep(const zq::NSString& path);

    zq::NSString folder_;
    std::vector<Note> notes_;
};

} // namespace notes

#endif
