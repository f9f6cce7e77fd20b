#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "base/process_flags.h"

/// The pictures of films and series that a slideshow goes through, told by names alone.
namespace tavek {

struct Slide {
  std::filesystem::path path;
  std::string name;  ///< what it stands for, "Blade Runner (1982)"
};

/// A poster as the strip lists it.
struct PosterTitle {
  std::string title;  ///< its posterTitleKey
  std::string path;
};

/// What "<name>.fanart.jpg" or a folder's fanart.jpg stands for; empty for any other file.
std::string slideNameOf(const std::filesystem::path& image);

/// The fan art below a folder whose film, or in a room of series whose show, is there: in the order of the
/// posters, where there are any for it, else of its file names. Walks the disk until `stop` is set.
std::vector<Slide> listSlides(const std::filesystem::path& folder, const std::vector<PosterTitle>& posters,
                              const Flag& stop);

/// The film of a slide: the one of its name beside it, else below.
std::optional<std::filesystem::path> videoOfSlide(const Slide& slide, const Flag& stop);

}  // namespace tavek
