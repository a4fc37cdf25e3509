// SPDX-License-Identifier: MIT
// What the commands do with the files of domains, and with files to import and export.
#ifndef ZQFOUNDATION_DEFAULTS_DOMAINFILE_H
#define ZQFOUNDATION_DEFAULTS_DOMAINFILE_H

#include "foundation/objects/NSDictionary.h"
#include "foundation/process/LockedFile.h"
#include "tools/defaults/Domains.h"

namespace ZQFoundation::tools::defaults {

/// The contents of the domain's file; nil if there is none. Fails with a message for a file that cannot be
/// read, is not a property list, or does not contain a dictionary.
///
/// Every path is followed by the rules of `reachGuarded`: in folders like /tmp, planted links are not
/// followed.
NSDictionary readDomain(const Domain& domain);

/// The dictionary in any file, even a pipe; "-" is standard input. Fails with a message like `readDomain`.
NSDictionary readDictionary(const std::string& path);

/// Reads the domain, calls `change`, and replaces the file with the result: others see the old file or the
/// complete new one, which has the old one's permissions. Writers wait for each other, for a limited time, so
/// none loses what another has written. If the file is a link, its target is written. Fails with a message,
/// and keeps the old file, if it cannot be read as above or the new one cannot be written.
///
/// `change` gets the dictionary, empty if there is no file, and returns the new one.
template <class Change>
void changeDomain(const Domain& domain, const Change& change);

/// Removes the domain's file. Fails with a message when there is none.
void removeDomain(const Domain& domain);

/// Writes the dictionary as XML to a file, which is replaced, or to a pipe or a device; "-" is standard
/// output.
void writeDictionary(const NSDictionary& dictionary, const std::string& path);

/// The file of a domain, locked against other writers as long as this object exists. All operations fail with
/// a message.
class LockedDomain {
public:
    explicit LockedDomain(const Domain& domain);

    /// Nil when there is no file.
    NSDictionary read() const;
    void replace(const NSDictionary& dictionary) const;
    void remove() const;

private:
    detail::LockedFile file_;
};

template <class Change>
void changeDomain(const Domain& domain, const Change& change) {
    const LockedDomain file(domain);
    const NSDictionary before = file.read();
    file.replace(change(before ? before : NSDictionary::dictionary()));
}

} // namespace ZQFoundation::tools::defaults

#endif
