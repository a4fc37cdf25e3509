// SPDX-License-Identifier: MIT
// What each outside project builds: prints a text of the library's own tables, so that a library which runs
// without finding them shows, a text of the host's own tables, and one value through the log's formats.
#include <cstdio>
#include <string>

#include <ZQFoundation/ZQFoundation.h>

using namespace ZQFoundation;

int main() {
    const NSString own =
        NSBundle::mainBundle().localizedStringForKey_value_table("greeting", "no table", nullptr);
    const int order = ZQVersionComparator::compareVersion_toVersion("27.4", "27.10");
    const NSString text = NSString::stringWithFormat(
        "%@; %@; %@", ZQFileMigrator::descriptionOfFileMigrationRetvalType(kFileMigrationSourceIsFolder), own,
        NSDictionary{{"order", order}}.condensedDescription());
    std::puts(text.utf8().c_str());
    return 0;
}
