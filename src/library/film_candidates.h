#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/process_flags.h"
#include "library/folder_walk.h"

/// Which images stand for films, and for which.
namespace tavek {

/// A file that becomes a tile, before the tiles are in order.
struct PosterCandidate {
  PosterCandidate(FileText listed, std::string titleKey, std::string plays);
  FileText file;
  std::string title;  ///< its posterTitleKey
  std::string media;  ///< what plays for it
  std::string name;   ///< the file's name, folded
};

struct PosterCandidates {
  std::vector<PosterCandidate> list;
  std::vector<std::filesystem::path> orders;  ///< each series.json that was met
};
inline constexpr std::string_view orderFileName = "series.json";

/// The images below the folder that stand for the films below it; all images if there is no film. In the
/// order of the walk, each with the film that plays for it, until each film's title has an image. Returns
/// what it has when `stop` is set.
PosterCandidates filmCandidates(const std::filesystem::path& folder, const Flag& stop);

/// The film that an image stands for: the first one below the image's folder, in the order of the
/// directories, whose normalised stem is the image's posterKeyOf. A poster.jpg or the like stands for a film
/// of its own folder before it stands for none: the one that has the folder's title but for the years, or
/// else the only one. With a limit, the image's folder has to lie inside it. Walks the disk until `stop` is
/// set.
std::optional<std::filesystem::path> findVideoForPoster(const std::filesystem::path& poster,
                                                        const std::filesystem::path& limit, const Flag& stop);

}  // namespace tavek
