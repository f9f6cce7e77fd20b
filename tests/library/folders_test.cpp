#include <gtest/gtest.h>

#include "base/paths.h"
#include "base/text.h"
#include "library/film_candidates.h"
#include "library/media_paths.h"
#include "library/next_item.h"
#include "library/poster_listing.h"
#include "support/media_root.h"
#include "support/table.h"

namespace tavek {
namespace {

using test::library;

void clear() {
  for (const auto& entry : fs::directory_iterator(library.path())) fs::remove_all(entry.path());
}

/// Makes empty files, and folders ("x/"), in a folder of the library; a bar stands between the names.
void make(const std::string& folder, const std::string& names) {
  for (const std::string& name : test::split(names)) {
    create_directories((library.path() / folder / name).parent_path());
    if (!name.ends_with('/')) std::ofstream(library.path() / folder / name).flush();
  }
}

TEST(MediaPaths, ClassifyFolders) {
  make("",
       "shows/A/Season 1/s01e02 Pilot.mkv|mixed/Show.S01E02.mkv|mixed/S01E02 folder/S1E2 x.mkv|"
       "mixed/S01x02.mkv|mixed/4x3 1x01.mkv|crossed/A/1x01.mkv");
  EXPECT_EQ(knownKind(mediaRoot() / "shows"), std::nullopt) << "only a walk can tell";
  Flag stop;
  stop = true;
  EXPECT_EQ(classifyFolder(mediaRoot() / "shows", stop), MediaKind::Movies);
  EXPECT_EQ(knownKind(mediaRoot() / "shows"), std::nullopt) << "a walk that was stopped tells nothing";
  std::string kinds;
  for (const char* folder : {"tv", "TV/", "/else/Series", "shows", "shows/./A/..", "VIDEOS", "Music", "Kids",
                             "mixed", "absent", "crossed"})
    kinds += std::to_string(static_cast<int>(classifyFolder(mediaRoot() / folder, {})));
  EXPECT_EQ(kinds, "11111230001");
  EXPECT_EQ(knownKind(mediaRoot() / "shows"), MediaKind::Series);
  EXPECT_EQ(knownKind(mediaRoot() / "never/TV"), MediaKind::Series);
  EXPECT_EQ(classifyFolder("", {}), MediaKind::Movies);
  make("absent", "S01E01.mkv");
  EXPECT_EQ(classifyFolder(mediaRoot() / "absent", {}), MediaKind::Movies) << "the first answer is kept";
}

TEST(MediaPaths, ListRooms) {
  const auto names = [] {
    std::string result;
    for (const fs::path& room : listRoots({})) result += room.lexically_relative(mediaRoot()).string() + ' ';
    return result;
  };
  clear();
  make("", "persist.json|.hidden/film.mkv");
  EXPECT_EQ(names(), "movies tv video music ");
  make("", "tv/|Zoo/");
  fs::create_directory_symlink(library.path() / "tv", library.path() / "link");
  fs::create_symlink(library.path() / "nowhere", library.path() / "broken");
  EXPECT_EQ(names(), "Zoo link tv ");
}

TEST(MediaPaths, TellWhatLiesInside) {
  for (const char* inside : {"/m/tv/", "/m/tv", "/m/./tv//x", "/m/tv\\x"})
    EXPECT_TRUE(isInside(inside, "/m/tv")) << inside;
  for (const char* outside : {"/m/tv2", "/m/tv/../x", "/m", ""})
    EXPECT_FALSE(isInside(outside, "/m/tv")) << outside;
  EXPECT_FALSE(isInside("/m", ""));
}

TEST(MediaPaths, FindRoomsAndSeries) {
  const auto nameOf = [](const std::optional<fs::path>& path) {
    return path ? path->lexically_relative(mediaRoot()).string() : "-";
  };
  // The room, the series room, the depth in it, the series folder.
  for (const std::string line :
       {"= - - 0 -", "movies/a.mkv= movies - 0 -", "tv= tv tv 0 -", "tv/A/= tv tv 1 -", "tv/../x= x - 0 -",
        "tv/./A/Season 1= tv tv 2 tv/A", "tv/A/S 1/S01E01.mkv= tv tv 3 tv/A", "../tv/A/B= - - 0 -",
        "/else/tv/A/B= - - 0 -"}) {
    const std::string path = line.substr(0, line.find('='));
    const fs::path full = mediaRoot() / path;
    EXPECT_EQ(path + "= " + nameOf(roomRootOf(full)) + ' ' + nameOf(seriesRootOf(full)) + ' ' +
                  std::to_string(seriesDepth(full)) + ' ' + nameOf(seriesFolderOf(full)),
              line);
  }
  EXPECT_EQ(roomRootOf(""), std::nullopt);
  EXPECT_EQ(roomRootOf(mediaRoot().string() + "\\x"), std::nullopt);
}

TEST(MediaPaths, NameRooms) {
  std::string normal;
  for (const char* name : {"Movie", "tvshows", "Series", "Videos", "Kids", ""})
    normal += normalizeRoomName(name) + ' ';
  EXPECT_EQ(normal, "movies tv tv video kids  ");
  const std::pair<std::string, const char*> media[] = {{(mediaRoot() / "Kids/a/b.mkv").string(), "kids"},
                                                       {"TV/a/b.mkv", "tv"},
                                                       {"/other/b.mkv", "movies"},
                                                       {"", "movies"}};
  for (const auto& [path, room] : media) EXPECT_EQ(roomNameOfMedia(path), room) << path;
  EXPECT_EQ(roomNameOfRoot("/") + roomLabelOf("/media/Kids", "x") + roomLabelOf("/", "Tv"), "movieskidstv");
}

TEST(NextItem, FollowsEpisodesAndTracks) {
  clear();
  make("tv",
       "Show/Season 1/S01E02.mp3|Show/Season 1/S01E03.mkv|Show/Season 2/S02E01 Back.mkv|"
       "Show/Season 1/S01E03.notes|Show/Season 1/Extra.mkv|Show/Season 1/S01E02-sample.mkv|"
       "Other/1x01.mkv|Other/1x02 Two.mkv|Other/S01E04.mkv|S01E09.mkv");
  make("music/Album", "2 Two.flac|07 Seven.flac|00 Zero.mp3|a.mp3|Bonus.flac|cover.jpg|inner/3 Three.flac");
  // An item, and the one after it or nothing.
  for (const auto& [current, expected] : test::table(R"(
      tv/Show/Season 1/S01E02.mp3 => tv/Show/Season 1/S01E03.mkv ;; tv/Show/Season 2/S02E01 Back.mkv =>
      tv/Show/Season 1/S01E03.mkv => tv/Show/Season 2/S02E01 Back.mkv ;; tv/Show/Season 1/Extra.mkv =>
      tv/Show/Season 1/../Season 1/S01E02.mp3 => tv/Show/Season 1/S01E03.mkv ;; tv/Show/Season 1/S07E01.mp3 =>
      tv/Show/Season 1/S01E02 renamed.mp3 => tv/Show/Season 1/S01E03.mkv ;; music/Gone/1 One.flac =>
      tv/Other/1x01.mkv => tv/Other/1x02 Two.mkv ;; tv/Other/1x02 Two.mkv => tv/Other/S01E04.mkv
      tv/S01E09.mkv => tv/Show/Season 2/S02E01 Back.mkv ;; music/Album/2 Two.flac => music/Album/07 Seven.flac
      music/Album/07 Seven.flac => music/Album/00 Zero.mp3 ;; music/Album/00 Zero.mp3 => music/Album/a.mp3
      music/Album/a.mp3 => music/Album/Bonus.flac ;; music/Album/Bonus.flac =>)")) {
    const auto next = nextItemAfter(library.path() / current, {});
    EXPECT_EQ(next ? next->lexically_relative(library.path()) : "", expected) << current;
  }
}

/// In lower case: what is listed, and a line for each tile: path > media (title) image [label].
std::string list(const std::string& folder) {
  const std::string root = library.path() / folder;
  Flag stop;
  const auto [kind, posters] = listPosters(root, stop);
  std::string text = listingNoun(kind) + std::string("\n");
  for (const auto& [path, media, key, image, label, isEpisode] : posters) {
    text += path + " > " + media + " (" + key.raw + ')' + (image != path ? image : "") + label +
            (isEpisode && kind != ListingKind::Episodes ? " episode\n" : "\n");
    EXPECT_EQ(isEpisode, !media.empty() && (kind == ListingKind::Episodes || kind == ListingKind::Seasons));
    // One tile by itself, from the disk.
    EXPECT_EQ(posterTitleKey(path), key.raw);
    EXPECT_TRUE(kind != ListingKind::Videos || findVideoForPoster(path, root, Flag()).value_or("") == media)
        << path;
    EXPECT_FALSE(findVideoForPoster(path, root + "/x", Flag()));
  }
  for (std::size_t at = 0; (at = text.find(root)) != std::string::npos;) text.erase(at, root.size() + 1);
  stop = true;
  EXPECT_TRUE(listPosters(root, stop).posters.empty()) << folder;
  return toLower(text);
}

/// Folder, the files in it, the listing.
constexpr const char* listings[][3] = {
    {"Movies",
     "F 10.mkv|F 10.jpg|F 2.avi|F 2.poster.png|Notes.jpg|fanart.jpg|F 2.fanart.jpg|Old.mkv|Old.POSTER.jpg|"
     "dir.jpg/|Box/Two (1979)/Two.mkv|Box/Two (1979)/Two.jpeg|Box/Two (1979)/FANART.PNG|Box/poster.jpg|"
     ".hid/A.mkv|.hid/A.jpg|One/One.mkv|One/COVER.poster.JPG|One/sub/One.jpg|None/poster.jpg|Late.mkv|"
     "Last.mkv|Later.mkv|b/Trip/Sea.MKV|b/Sea.jpg|x.mkv/",
     "poster candidates\nf 2.poster.png > f 2.avi (f 2)\nf 10.jpg > f 10.mkv (f 10)\n"
     "old.poster.jpg >  (old)\n.hid/a.jpg > .hid/a.mkv (a)\nbox/poster.jpg >  (box)\n"
     "box/two (1979)/two.jpeg > box/two (1979)/two.mkv (two 1979)\none/cover.poster.jpg > one/one.mkv (one)\n"
     "one/sub/one.jpg >  (one)\nb/sea.jpg > b/trip/sea.mkv (sea)\n"},
    {"Films",
     "战狼 2/战狼 2.mkv|战狼 2/战狼 2.jpg|Брат 2.mkv|БРАТ 2.png|Café.mkv|Cafe\u0301.jpg|Ärger.avi|"
     "äRGER.jpeg|\xff.mkv|\xff.jpg|Plain (1982)/Plain.mkv|Plain (1982)/poster.jpg|"
     "Plain (1982)/Plain-trailer.mkv|Plain (1982)/theme.mp3|Odd/its.name.mkv|Odd/front.jpg|sample.mkv|"
     "sample.jpg",
     "poster candidates\ncafe\u0301.jpg > café.mkv (café)\närger.jpeg > Ärger.avi (ärger)\n"
     "БРАТ 2.png > Брат 2.mkv (брат 2)\n\xff.jpg > \xff.mkv (\xff)\nodd/front.jpg > odd/its.name.mkv "
     "(its.name)\n"
     "plain (1982)/poster.jpg > plain (1982)/plain.mkv (plain 1982)\n"
     "战狼 2/战狼 2.jpg > 战狼 2/战狼 2.mkv (战狼 2)\n"},
    {"Videos", "b.png|Sea/a.jpeg|fanart.png|B.PNG|b.srt|closed/",
     "poster candidates\nb.png >  (b)\nc.jpg >  (c)\nsea/a.jpeg >  (a)\n"},
    {"TV", "Show 10/|show 2/poster.jpg|.Hid/|x.mkv",
     "tv folders\n.hid/poster.jpg >  (.hid).hid\nalias/poster.jpg >  (alias)alias\n"
     "show 2/poster.jpg >  (show 2)show 2\nshow 10/poster.jpg >  (show 10)show 10\n"},
    {"TV/show 2",
     "Season 10/S10E01.mkv|S03/|SPECIALS/|Extras/|Sp1x/|S1.mkv|Seaso/|season 2/|Staffel 4/|S01E10 End.mkv|"
     "1x02.avi|S01E10-sample.mkv|theme.mp3|Pilot.mkv|Staffel/",
     "season folders\ns03/poster.jpg >  (s03)s03\nseason 2/poster.jpg >  (season 2)season 2\n"
     "season 10/poster.jpg >  (s10e01)season 10\nspecials/poster.jpg >  (specials)specials\n"
     "staffel 4/poster.jpg >  (staffel 4)staffel 4\n1x02.avi > 1x02.avi (1x02)1x02-thumb.jpg1x02 episode\n"
     "s01e10 end.mkv > s01e10 end.mkv (s01e10 end)s01e10 end-thumb.jpgs01e10 end episode\n"},
    {"TV/Show 10/s1", "Pilot.mkv|S02E10 b.mkv|Show.s2e2.mp4|S02E9.jpg|S02E9.MKV|s02e9.mkv|x/S02E1.mkv",
     "poster candidates\ns02e9.mkv > s02e9.mkv (s02e9)s02e9-thumb.jpgs02e9\n"
     "s02e10 b.mkv > s02e10 b.mkv (s02e10 b)s02e10 b-thumb.jpgs02e10 b\n"
     "show.s2e2.mp4 > show.s2e2.mp4 (show.s2e2)show.s2e2-thumb.jpgshow.s2e2\n"},
    {"music", "B/Two/x.flac|B/Two/cover.jpg|B/Two/y.mkv|a.mp3|A\nb/1.OGG",
     "music albums\na.mp3 > a.mp3 (a)music\na\nb/1.ogg > a\nb/1.ogg (1)a\nb\n"
     "b/two/x.flac > b/two/x.flac (x)two\n"},
    {"gone", "", "poster candidates\n"}};

TEST(Listing, IsWhatTheFolderCallsFor) {
  clear();
  make("", "Videos/Sea/|TV/");
  fs::create_directory_symlink("..", library.path() / "Videos/Sea/loop");
  fs::create_symlink("b.srt", library.path() / "Videos/c.jpg");
  fs::create_symlink("nowhere", library.path() / "Videos/d.jpg");
  fs::create_directory_symlink("show 2", library.path() / "TV/Alias");
  for (const auto& [folder, files, listing] : listings) make(folder, files);
  fs::permissions(library.path() / "Videos/closed", fs::perms::none);
  for (const auto& [folder, files, listing] : listings) EXPECT_EQ(list(folder), listing);
  fs::permissions(library.path() / "Videos/closed", fs::perms::owner_all);
}

TEST(Listing, GivesAPosterTheFilmOfItsFolder) {
  // The folder of the poster, the videos there, the one that it plays.
  for (const auto& [name, videos, plays] : test::table<3>(R"(
      Two (1990) => More.mkv|Two (1991).mkv => Two (1991).mkv ;; 1984 (1956) => 1984.mkv|b.mkv => 1984.mkv
      ÄRGER (1990) => ärger.mkv|b.mkv => ärger.mkv ;; Box => One.mkv|Two.mkv => ;; Shelf => Far/One.mkv =>
      Any (1990) => one.mkv|one-sample.mkv|Any 1990/Any 1990.mkv => Any 1990/Any 1990.mkv)")) {
    make("own/" + name, videos);
    const fs::path folder = library.path() / "own" / name;
    const auto found = findVideoForPoster(folder / "poster.jpg", {}, Flag());
    EXPECT_EQ(found ? fs::path(*found).lexically_relative(folder) : "", plays) << name;
  }
}

TEST(Listing, HasLimits) {
  // Whichever folder is walked first, its images do not push the other films off the list.
  for (const char* film : {"A", "B", "C"})
    make(std::string("kids/") + film, std::string(film) + ".mkv|" + film + ".jpg|cover.jpg|poster.jpg");
  std::set<std::string> titles;
  for (const ListedPoster& poster : listPosters(library.path() / "kids", {}).posters)
    titles.insert(poster.key.raw);
  EXPECT_EQ(titles, (std::set<std::string>{"a", "b", "c"}));
  for (int album = 0; album < 301; ++album) make("Music", std::to_string(album) + "/a.wav");
  const auto albums = listPosters(library.path() / "Music", {}).posters;
  EXPECT_EQ(std::to_string(albums.size()) + ' ' + albums.back().label, "300 98") << "99 is one too many";
}

}  // namespace
}  // namespace tavek
