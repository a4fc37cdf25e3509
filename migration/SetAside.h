// SPDX-License-Identifier: MIT
// Internal: not installed.
// Declares the step between a complete copy and the removal of its source.
#ifndef ZQFOUNDATION_MIGRATION_SETASIDE_H
#define ZQFOUNDATION_MIGRATION_SETASIDE_H

#include <string>

#include "foundation/files/ItemPlace.h"

namespace ZQFoundation::detail {

/// An item renamed in one step, in its folder, so that it can be checked before it is removed. At the end of
/// the scope it gets its name back unless it was released for removal.
class SetAside {
public:
    /// The place must outlive this object.
    explicit SetAside(const ItemPlace& place) noexcept : place_(place) {}
    SetAside(const SetAside&) = delete;
    SetAside& operator=(const SetAside&) = delete;
    ~SetAside();

    /// Renames the item if it is still this one. False with `errno` and nothing changed; ESTALE for another
    /// item.
    bool take(const struct stat& item);

    /// Restores its name, or a numbered one if that was taken meanwhile. False if it stays hidden until the
    /// next migration finds it.
    bool putBack() noexcept;

    /// Releases it for removal, by another hidden name that says so even after the process has ended. False
    /// with `errno`; then it is still set aside.
    bool giveUp();

    /// Removes the file in one step. False with `errno`; then it is still set aside.
    bool removeFile();

    /// Where the item is now.
    int folder() const noexcept { return long_ ? long_.number() : place_.folder(); }
    const char* name() const noexcept { return name_.c_str(); }

private:
    enum class State { inPlace, aside, givenUp };

    bool hide();
    bool hideLong();
    void removeLongFolder() noexcept;

    const ItemPlace& place_;
    State state_ = State::inPlace;
    std::string name_;
    std::string longName_; ///< the folder that contains an item with a long name
    Descriptor long_;
};

/// Gives a hidden item the name `wanted` in that folder, or a numbered one if that is taken. False with
/// `errno`.
bool showItem(int hiddenFolder, const char* hiddenName, int folder, const std::string& wanted);

/// The same, but always with a numbered name.
bool showItemBeside(int hiddenFolder, const char* hiddenName, int folder, const std::string& name);

} // namespace ZQFoundation::detail

#endif
