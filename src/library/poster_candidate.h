#pragma once

#include <string>
#include <vector>

#include "library/folder_walk.h"

namespace tavek {

/// A file that becomes a tile, before the tiles are in order.
struct PosterCandidate {
  PosterCandidate(FileText listed, std::string title);
  FileText file;
  std::string title;  ///< its posterTitleKey
  std::string media;  ///< what plays for it
  std::string name;   ///< the file's name in lower case
};

/// Puts them in the order of the list: by folder, in one folder by name. Of files whose names differ in case
/// alone the first one stays.
void orderCandidates(std::vector<PosterCandidate>& candidates);

}  // namespace tavek
