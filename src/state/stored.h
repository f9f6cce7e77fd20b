#pragma once

#include "state/folder_playback.h"
#include "state/media_notes.h"
#include "state/stored_devices.h"
#include "state/stored_settings.h"
#include "state/stored_users.h"

namespace tavek {

/// What is remembered, in its parts: handed by reference to whoever needs it, and owned by a StateStore that
/// outlives them all. Every thread may call every operation.
struct Stored {
  StoredSettings& settings;
  StoredUsers& users;
  FolderPlayback& playback;
  MediaNotes& notes;
  StoredDevices& devices;
};

}  // namespace tavek
