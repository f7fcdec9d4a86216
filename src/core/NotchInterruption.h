#pragma once

#include "base/Date.h"
#include "platform/Defaults.h"
#include "platform/Session.h"

/// The single gate for anything that shows uninvited, be it a nudge, a flash or a notification.
namespace lumenary::NotchInterruption {

/// Asks for the right to interrupt the person, and takes it: at most once a day, never over a full-screen app, never
/// with the microphone in use. A refusal writes nothing; a right that can't be written down isn't given.
bool claim(Defaults& defaults, const Session& session, Date now);

}  // namespace lumenary::NotchInterruption
