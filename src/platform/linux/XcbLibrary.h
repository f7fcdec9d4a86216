#pragma once

#include <xcb/xcb.h>

namespace lumenary {

/// The functions of libxcb that are used. The library is opened at the first need: the command never loads it.
struct XcbLibrary {
  decltype(&xcb_connect) connect = nullptr;
  decltype(&xcb_disconnect) disconnect = nullptr;
  decltype(&xcb_connection_has_error) hasError = nullptr;
  decltype(&xcb_get_setup) setup = nullptr;
  decltype(&xcb_setup_roots_iterator) roots = nullptr;
  decltype(&xcb_screen_next) nextScreen = nullptr;
  decltype(&xcb_intern_atom) internAtom = nullptr;
  decltype(&xcb_intern_atom_reply) internAtomReply = nullptr;
  decltype(&xcb_get_property) getProperty = nullptr;
  decltype(&xcb_get_property_reply) getPropertyReply = nullptr;
  decltype(&xcb_get_property_value) propertyValue = nullptr;
  decltype(&xcb_get_geometry) getGeometry = nullptr;
  decltype(&xcb_send_event) sendEvent = nullptr;
  decltype(&xcb_get_geometry_reply) getGeometryReply = nullptr;

  /// Null where this machine has none. From any thread.
  static const XcbLibrary* opened();
};

}  // namespace lumenary
