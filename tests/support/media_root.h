#pragma once

#include <cstdlib>

#include "support/temp_folder.h"

namespace tavek::test {

/// Makes a temporary folder the library of the whole test program, before anything can ask for the real one.
class MediaRoot : public TempFolder {
 public:
  MediaRoot() { setenv("TAVEK_MEDIA_ROOT", path().c_str(), 1); }
};

inline const MediaRoot library;

}  // namespace tavek::test
