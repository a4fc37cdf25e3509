// SPDX-License-Identifier: MIT
#ifndef ZQFOUNDATION_DEFAULTS_DOMAINFILE_H
#define ZQFOUNDATION_DEFAULTS_DOMAINFILE_H

#include "foundation/objects/NSDictionary.h"
#include "foundation/system/Descriptor.h"
#include "tools/defaults/Domains.h"

namespace ZQFoundation::defaults {

/// What the domain's file holds; nil when there is none. Fails with a message for a file that cannot be read,
/// is no property list, or holds no dictionary.
NSDictionary readDomain(const Domain& domain);

/// The dictionary in any file, a pipe too; "-" for standard input. Fails with a message as `readDomain`.
NSDictionary readDictionary(const std::string& path);

/// Reads the domain, has it changed, and puts the result in its place: others see the old file or the whole
/// new one, which has the old one's permissions. Writers wait for one another, so none loses what another has
/// written. A link is written through. Fails with a message, and the old file stays, when it cannot be read
/// as above or the new one not be written.
///
/// `change` gets the dictionary, empty when there is no file, and answers the new one.
template <class Change>
void changeDomain(const Domain& domain, const Change& change);

/// Removes the domain's file. Fails with a message when there is none.
void removeDomain(const Domain& domain);

/// Writes the dictionary as XML to a file, which is replaced, to a pipe or a device; "-" for standard output.
void writeDictionary(const NSDictionary& dictionary, const std::string& path);

namespace details {

/// The file of a domain with its folder locked against other writers, as long as it lives.
class LockedFile {
public:
    explicit LockedFile(const Domain& domain);
    LockedFile(const LockedFile&) = delete;
    LockedFile& operator=(const LockedFile&) = delete;

    NSDictionary read() const;
    void replace(const NSDictionary& dictionary) const;
    void remove() const;

private:
    void openFolder(bool isNamed);
    void lockFolder();
    void lockFileInFolder();
    void removeLeftovers() const;
    void keepOwnerAndPermissions(int file, const std::string& path) const;
    void writeTemporary(const std::string& temporary, const std::string& bytes) const;

    std::string path_; ///< links resolved
    std::string folderPath_;
    std::string name_;
    detail::Descriptor folder_;
    detail::Descriptor lockFile_; ///< where the folder cannot be locked
};

} // namespace details

template <class Change>
void changeDomain(const Domain& domain, const Change& change) {
    const details::LockedFile file(domain);
    const NSDictionary before = file.read();
    file.replace(change(before ? before : NSDictionary::dictionary()));
}

} // namespace ZQFoundation::defaults

#endif
