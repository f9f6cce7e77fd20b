// A screen, a sound server, a library and a home folder together: all that a run of the program meets.
#pragma once

#include "rig/media.h"
#include "rig/screen.h"
#include "rig/sound_server.h"

namespace tavek::rig {

struct Stage {
  TempFolder library, home;
  Screen screen;
  SoundServer sound;

  Environment environment() const {
    Environment result = sound.environment();
    result["DISPLAY"] = screen.name();
    result["DBUS_SESSION_BUS_ADDRESS"] = "disabled:";
    result["HOME"] = result["TAVEK_HOME"] = home.path();
    result["TAVEK_MEDIA_ROOT"] = library.path();
    return result;
  }
};

}  // namespace tavek::rig
