#pragma once

#include "HelperRules.h"
#include "platform/Descriptor.h"

#include <vector>

/// The folders that the helper's commands are about, each opened once, so that what was judged is what the
/// tool works on, whatever others do to its name. Takes only paths that pathRefusal allows.
class HelperFolders {
public:
    /// Opens the folder itself, which must be one of the kinds, or for New the one to make it in. Follows no
    /// link in its own place, and on the way to it only links that nobody but root can have made. Empty when
    /// there is no folder. Don't use what comes with a refusal.
    Descriptor open(const std::string &path, unsigned kinds, uid_t caller, std::string &refusal) const;

    /// Remembers the folder that mkdir just made in `parent`, and counts it. One that isn't empty, root's,
    /// and of root's group or the parent's has been swapped in, and is only counted.
    void remember(const Descriptor &parent, const std::string &name);

private:
    bool isMade(const Descriptor &folder) const;

    /// Kept open so that their inode numbers can't be reused.
    std::vector<Descriptor> made;
    /// Counts those that weren't remembered, too.
    int madeCount = 0;
};
