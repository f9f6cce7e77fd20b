#include "scan/credentials.h"

#include <algorithm>
#include <span>
#include <system_error>
#include <vector>

#include "base/console.h"
#include "base/file_write.h"
#include "base/paths.h"
#include "base/process_flags.h"
#include "state/small_file.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;

enum class Takes { Always, WhenEmpty };

struct KeyRow {
  const char* key;
  std::string Credentials::*value;
  Takes takes = Takes::Always;
};

constexpr KeyRow tmdbRows[] = {
    {"Key", &Credentials::tmdbKey},         {"ReadAccessToken", &Credentials::tmdbToken},
    {"FanartKey", &Credentials::fanartKey}, {"FanartClientKey", &Credentials::fanartClientKey},
    {"TvdbKey", &Credentials::tvdbKey},     {"TvdbPin", &Credentials::tvdbPin},
};

constexpr KeyRow fanartRows[] = {
    {"api_key", &Credentials::fanartKey},
    {"client_key", &Credentials::fanartClientKey},
    {"ApiKey", &Credentials::fanartKey, Takes::WhenEmpty},
    {"APIKey", &Credentials::fanartKey, Takes::WhenEmpty},
    {"Key", &Credentials::fanartKey, Takes::WhenEmpty},
    {"ClientKey", &Credentials::fanartClientKey, Takes::WhenEmpty},
    {"clientKey", &Credentials::fanartClientKey, Takes::WhenEmpty},
    {"FanartKey", &Credentials::fanartKey, Takes::WhenEmpty},
    {"FanartClientKey", &Credentials::fanartClientKey, Takes::WhenEmpty},
    {"TvdbKey", &Credentials::tvdbKey},
    {"tvdb_key", &Credentials::tvdbKey},
    {"TVDBKey", &Credentials::tvdbKey},
    {"TvdbPin", &Credentials::tvdbPin},
    {"tvdb_pin", &Credentials::tvdbPin},
    {"TVDBPin", &Credentials::tvdbPin},
};

bool isThere(const fs::path& path) {
  std::error_code error;
  const fs::file_type type = fs::status(path, error).type();
  return type != fs::file_type::none && type != fs::file_type::not_found;
}

/// The places in their order; one that the system does not tell is left out.
std::vector<fs::path> places() {
  std::error_code ignored;
  std::vector<fs::path> folders{fs::current_path(ignored), homeFolder(),
                                fs::read_symlink("/proc/self/exe", ignored).parent_path(),
                                etcFolder() / "tavek"};
  std::erase_if(folders, [](const fs::path& folder) { return folder.empty(); });
  return folders;
}

bool ensureConfigStub(const fs::path& path) {
  std::error_code ignored;
  fs::create_directories(path.parent_path(), ignored);
  return replaceFile(path, "{}\n", 0600);
}

/// Line by line, so that what stands in one is no part of the next.
std::string textOf(const fs::path& file) {
  std::string text = readSmallFile(file).text;
  std::erase(text, '\n');
  return text;
}

void readRows(const std::string& text, std::span<const KeyRow> rows, Credentials& credentials) {
  for (const auto& [key, value, takes] : rows) {
    if (takes == Takes::WhenEmpty && !(credentials.*value).empty()) continue;
    if (auto found = readConfigString(text, key)) credentials.*value = std::move(*found);
  }
}

}  // namespace

std::optional<fs::path> findConfigFile(std::string_view name) {
  for (const fs::path& folder : places()) {
    if (isThere(folder / name)) return folder / name;
  }
  if (homeFolder().empty() || !ensureConfigStub(homeFolder() / name)) return {};
  return homeFolder() / name;
}

std::optional<std::string> readConfigString(std::string_view text, std::string_view key) {
  constexpr auto npos = std::string_view::npos;
  std::size_t at = text.find('"' + std::string(key) + '"');
  if (at != npos) at = text.find(':', at + key.size() + 2);
  if (at != npos) at = text.find('"', at);
  const std::size_t end = at != npos ? text.find('"', at + 1) : npos;
  if (end == npos || end == at + 1) return {};
  std::string value(text.substr(at + 1, end - at - 1));
  // It becomes part of a head or an address.
  const auto plain = [](char c) { return static_cast<unsigned char>(c) > ' ' && c != 0x7f; };
  return std::ranges::all_of(value, plain) ? std::optional(std::move(value)) : std::nullopt;
}

Credentials readCredentials() {
  Credentials credentials;
  if (const auto file = findConfigFile(".tmdb.json")) {
    readRows(textOf(*file), tmdbRows, credentials);
    if (tmdbConsoleEnabled) console::logTmdb("config loaded from " + file->string());
  }
  if (!credentials.fanartKey.empty()) return credentials;
  if (const auto file = findConfigFile(".fanart.json")) {
    readRows(textOf(*file), fanartRows, credentials);
    if (!credentials.fanartKey.empty() && fanartConsoleEnabled)
      console::logFanart("fanart config loaded from " + file->string());
  }
  return credentials;
}

}  // namespace tavek
