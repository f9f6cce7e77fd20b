#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/process_flags.h"

/// The large pictures that lie beside films and series, and what they belong to. May be called from every
/// thread.
namespace tavek {

/// A picture for the whole screen, with the name of what it shows.
struct Slide {
  std::string path;
  std::string name;
  bool operator==(const Slide&) const = default;
};

/// A poster as far as the order of slides depends on it.
struct PosterTitle {
  std::string path;
  std::string title;  ///< its posterTitleKey
};

/// "Some Film" of "Some Film.fanart.jpg", or the name of the folder for a plain "fanart.jpg"; empty for what
/// is no fan art.
std::string fanArtName(const std::filesystem::path& file);

/// What lies below a folder for its films, or, in the root of a series room, for its series. In the order of
/// the posters, of which each takes one slide of its title; by file name if none has any. One walk that opens
/// no file; returns what it has when `stop` is set.
std::vector<Slide> listSlides(const std::filesystem::path& folder, std::vector<PosterTitle> posters,
                              const Flag& stop);

/// A slide with the title by which posters claim it.
struct TitledSlide {
  Slide slide;
  std::string title;
};
/// The order alone.
std::vector<Slide> orderSlides(std::vector<TitledSlide> slides, std::vector<PosterTitle> posters);

/// The film that a slide shows: the first one of its title in its folder, else below that. Walks the
/// disk until `stop` is set.
std::optional<std::filesystem::path> filmOfSlide(const Slide& slide, const Flag& stop);

struct TitleYear {
  std::string title;
  std::string year;  ///< empty for a name without one
};
/// "Some Film" and "1982" of "Some Film (1982)".
TitleYear splitTitleYear(std::string_view text);

}  // namespace tavek
