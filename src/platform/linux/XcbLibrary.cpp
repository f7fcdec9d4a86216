#include "platform/linux/XcbLibrary.h"

#include <dlfcn.h>

#include <optional>

namespace lumenary {
namespace {

template <class Function>
bool look(void* library, const char* name, Function& function) {
  function = reinterpret_cast<Function>(::dlsym(library, name));
  return function != nullptr;
}

std::optional<XcbLibrary> open() {
  void* const library = ::dlopen("libxcb.so.1", RTLD_NOW | RTLD_LOCAL);
  XcbLibrary xcb;
  const bool isWhole =
      library != nullptr && look(library, "xcb_connect", xcb.connect) &&
      look(library, "xcb_disconnect", xcb.disconnect) && look(library, "xcb_connection_has_error", xcb.hasError) &&
      look(library, "xcb_get_setup", xcb.setup) && look(library, "xcb_setup_roots_iterator", xcb.roots) &&
      look(library, "xcb_screen_next", xcb.nextScreen) && look(library, "xcb_intern_atom", xcb.internAtom) &&
      look(library, "xcb_intern_atom_reply", xcb.internAtomReply) &&
      look(library, "xcb_get_property", xcb.getProperty) &&
      look(library, "xcb_get_property_reply", xcb.getPropertyReply) &&
      look(library, "xcb_get_property_value", xcb.propertyValue) &&
      look(library, "xcb_get_geometry", xcb.getGeometry) && look(library, "xcb_send_event", xcb.sendEvent) &&
      look(library, "xcb_get_geometry_reply", xcb.getGeometryReply);
  return isWhole ? std::optional(xcb) : std::nullopt;
}

}  // namespace

const XcbLibrary* XcbLibrary::opened() {
  static const std::optional<XcbLibrary> library = open();
  return library ? &*library : nullptr;
}

}  // namespace lumenary
