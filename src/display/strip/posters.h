#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <unordered_map>
#include <vector>

#include <SDL.h>

#include "base/file_state.h"
#include "display/strip/poster_loader.h"
#include "display/toolkit/sdl_handles.h"
#include "library/fan_art.h"
#include "library/match_key.h"
#include "state/stored_users.h"

namespace tavek {

/// One tile of the strip.
struct Poster {
  TexturePtr texture;
  std::filesystem::path
      path;           ///< what it stands for: an image, <folder>/poster.jpg, an episode or a first track
  std::string media;  ///< the file that plays for it; empty if none is known
  MatchKey key;
  FileState image;  ///< that the texture was made of
  int width = 0;    ///< at the height of the strip's posters; 0 if unknown
  bool watched = false;
};

/// The posters of the open folder, and those of the folders that were open before. Main thread only; the
/// loader's thread is behind PosterLoader.
class Posters {
 public:
  explicit Posters(StoredUsers& users) : users_(users) {}
  /// The folder is the open one, and complete or on its way to be.
  bool isOpen(const std::filesystem::path& path);
  /// Makes a folder the open one. One that was completely loaded before comes back at once; any other is
  /// loaded.
  void openPosterFolder(SDL_Renderer* renderer, const std::filesystem::path& path);
  /// Turns up to `count` loaded tiles into textures, for posters of a height in pixels.
  void takePendingPosters(SDL_Renderer* renderer, int height, int count);
  /// What lies below a folder has changed on the disk; an empty path means the open folder. Its tiles are
  /// listed anew while the old ones stand, and the selection stays on its poster.
  void folderChanged(const std::filesystem::path& folder);
  /// Once per pass, for that: turns up to `count` new tiles into textures.
  void followChange(SDL_Renderer* renderer, int height, int count);
  /// Asks the stored state anew for each poster's mark.
  void refreshWatchedBits();
  /// Drops every texture; has to run before the renderer goes.
  void clear();

  const std::filesystem::path& openFolder() const { return page_.folder; }
  const std::vector<Poster>& list() const { return page_.posters; }
  /// Of all posters that are loaded, also of those that no texture was made of yet.
  std::vector<PosterTitle> titles();
  bool posterListComplete() const { return loader_.finished(); }
  /// The first screenful is in.
  bool postersReady() const { return page_.ready; }

  /// -1 for none.
  int selectedPoster() const { return page_.selected; }
  /// The first poster that the strip shows.
  std::size_t stripScroll() const;
  /// Clamps the index. A choice of the viewer ends the wait for another poster.
  void selectPoster(int index);
  void clearSelection();
  /// Selects the poster of that title when it comes.
  void waitForTitle(std::string title);
  /// Puts the selection on the poster of a file, now or when that poster is loaded. An empty path ends the
  /// wait for one.
  void selectPosterFor(const std::filesystem::path& media);
  /// Selects the first poster that a spoken title means; false if there is none.
  bool selectPosterByVoice(std::string_view text);
  /// Selects the first poster whose name begins with the typed text.
  void jumpToTyped(std::string_view text);

  /// Lets go of textures that the graphics driver has lost; looks twice a second.
  void dropBadTextures(Uint64 nowMs);

 private:
  /// A folder's list with its place in it.
  struct Page {
    std::filesystem::path folder;
    std::vector<Poster> posters;
    PosterBacklog backlog;
    int selected = -1;
    bool ready = false;
  };

  void select(int index);
  void leavePage();
  bool returnTo(const std::filesystem::path& folder);
  Poster made(SDL_Renderer* renderer, PendingPoster pending, int height) const;
  void add(Poster poster);
  void listAgain();
  void takeNewList();
  int placeOf(const Poster& poster) const;
  bool meetsGoal(const Poster& poster);
  bool seriesRoom() const;
  int findMedia(const std::filesystem::path& media) const;
  int findKey(const MatchKey& key) const;

  StoredUsers& users_;
  PosterLoader loader_;
  Page page_;
  std::unordered_map<std::string, Page> folderPages_;  ///< complete ones, by the folder's normal text

  bool changed_ = false;     ///< the open folder is to be listed anew
  bool listsAgain_ = false;  ///< it is
  PosterLoader again_;
  std::vector<Poster> next_;  ///< of the new list; those without a texture have one in the old list

  /// The file whose poster is to be selected once it comes. Names tell less than the file itself: the first
  /// poster of a like name is taken, until one of the very name comes, or that of the very file.
  struct Goal {
    std::string media;
    MatchKey selectionKey;
    std::string waitingKey;           ///< a title to look for where the file has no key
    KeyMatch found = KeyMatch::None;  ///< how well the selected poster's name goes with it
  };
  Goal goal_;
  Uint64 lastTextureCheckAt_ = 0;
};

}  // namespace tavek
