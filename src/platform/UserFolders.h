#pragma once

#include <string_view>

#include "platform/DurableFiles.h"
#include "platform/Places.h"

/// Desktops name a person's folders in their language and write the names down.
namespace lumenary {

/// What a file "user-dirs.dirs" says of the folders below the home folder: `personalFolders` and `downloads` of the
/// result, standardised. Lines that aren't `XDG_NAME_DIR="$HOME/…"` or `="/…"` are passed over, and so is the home
/// folder itself, which stands for a folder that isn't wanted.
Places withUserFolders(Places places, std::string_view text);

/// The same from the file in `configHome`; one that can't be read says nothing.
Places withUserFolders(Places places, DurableFiles& files);

}  // namespace lumenary
