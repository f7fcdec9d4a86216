#pragma once

#include <string>
#include <vector>

#include "apps/AppInventoryScanner.h"
#include "cleanup/CleanupCatalog.h"
#include "platform/AppRegistry.h"
#include "platform/Places.h"

namespace lumenary {

/// Where apps keep things on Linux, by the kinds of the product:
///
///   caches      ~/.cache
///   support     ~/.config, ~/.local/share, ~/.local/state
///   container   ~/.var/app/ID of Flatpaks, ~/snap/NAME of snaps
///   homeFolder  as the table of known apps says
///
/// Of what lies in ~/.local/state nothing is called safe: undo histories may be there.
/// There is no place of their own for logs, saved windows and web data. The first four are where the XDG variables
/// point. Nothing counts as left behind until a rule for that is set.
AppLayout linuxLayout(const Places& places);

/// The apps as the inventory takes them. A name that several go by belongs to the one that it is surest for.
std::vector<FoundBundle> linuxBundles(const std::vector<RegisteredApp>& apps);

/// An inventory of these apps. What `catalog`, which must outlive it, knows to be no plain cache isn't called safe.
AppInventoryScanner linuxInventoryScanner(const Places& places, const std::vector<RegisteredApp>& apps,
                                          const CleanupCatalog& catalog);

}  // namespace lumenary
