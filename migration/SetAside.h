// SPDX-License-Identifier: MIT
// Internal: not installed.
#ifndef ZQFOUNDATION_MIGRATION_SETASIDE_H
#define ZQFOUNDATION_MIGRATION_SETASIDE_H

#include <string>

#include "foundation/files/ItemPlace.h"

namespace ZQFoundation::detail {

/// An item that was taken away from its name, in one step and beside it, to be looked at before it is
/// removed. However the scope is left, it goes back unless it was given up.
class SetAside {
public:
    /// The place must outlive this.
    explicit SetAside(const ItemPlace& place) noexcept : place_(place) {}
    SetAside(const SetAside&) = delete;
    SetAside& operator=(const SetAside&) = delete;
    ~SetAside();

    /// Takes the item away, if it is still this one: false with `errno` and everything as it was, ESTALE for
    /// another item.
    bool take(const struct stat& item);

    /// Gives it its name back; where that was taken meanwhile, a free one like it. False when it stays
    /// hidden, until the next migration finds it.
    bool putBack() noexcept;

    /// From here on it is to be removed: by another hidden name, which says so also after the process has
    /// ended. False with `errno`; then it is still set aside.
    bool giveUp();

    /// Removes the file that was taken away, in one step. False with `errno`; then it is still set aside.
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
    std::string longName_; ///< of the folder that holds an item whose name is long
    Descriptor long_;
};

/// Gives a hidden item the name `wanted` in that folder, or a numbered one like it where that is taken. False
/// with `errno`.
bool showItem(int hiddenFolder, const char* hiddenName, int folder, const std::string& wanted);

/// The same with a numbered name in any case.
bool showItemBeside(int hiddenFolder, const char* hiddenName, int folder, const std::string& name);

} // namespace ZQFoundation::detail

#endif
