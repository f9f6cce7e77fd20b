#include "scan/credentials.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include "base/console.h"
#include "base/descriptor.h"
#include "base/paths.h"
#include "base/process_flags.h"

namespace tavek {
namespace {

namespace fs = std::filesystem;
using Field = std::string Credentials::*;

enum class Take {
  Always,
  IfOpen,  ///< only for a credential that is still empty
};
struct ConfigKey {
  std::string_view key;
  Field field;
  Take take = Take::Always;
};

constexpr std::array tmdbKeys{
    ConfigKey{"Key", &Credentials::tmdbKey},
    ConfigKey{"ReadAccessToken", &Credentials::tmdbToken},
    ConfigKey{"FanartKey", &Credentials::fanartKey},
    ConfigKey{"FanartClientKey", &Credentials::fanartClientKey},
    ConfigKey{"TvdbKey", &Credentials::tvdbKey},
    ConfigKey{"TvdbPin", &Credentials::tvdbPin},
};
constexpr std::array fanartKeys{
    ConfigKey{"api_key", &Credentials::fanartKey},
    ConfigKey{"client_key", &Credentials::fanartClientKey},
    ConfigKey{"ApiKey", &Credentials::fanartKey, Take::IfOpen},
    ConfigKey{"APIKey", &Credentials::fanartKey, Take::IfOpen},
    ConfigKey{"Key", &Credentials::fanartKey, Take::IfOpen},
    ConfigKey{"ClientKey", &Credentials::fanartClientKey, Take::IfOpen},
    ConfigKey{"clientKey", &Credentials::fanartClientKey, Take::IfOpen},
    ConfigKey{"FanartKey", &Credentials::fanartKey, Take::IfOpen},
    ConfigKey{"FanartClientKey", &Credentials::fanartClientKey, Take::IfOpen},
    ConfigKey{"TvdbKey", &Credentials::tvdbKey},
    ConfigKey{"tvdb_key", &Credentials::tvdbKey},
    ConfigKey{"TVDBKey", &Credentials::tvdbKey},
    ConfigKey{"TvdbPin", &Credentials::tvdbPin},
    ConfigKey{"tvdb_pin", &Credentials::tvdbPin},
    ConfigKey{"TVDBPin", &Credentials::tvdbPin},
};

template <typename Keys>
void readKeys(const Keys& keys, std::string_view text, Credentials& credentials) {
  for (const auto& [key, field, take] : keys) {
    std::string& value = credentials.*field;
    if (take == Take::IfOpen && !value.empty()) continue;
    if (auto found = readConfigString(text, key)) value = std::move(*found);
  }
}

bool stands(const fs::path& path) {
  std::error_code error;
  const fs::file_type type = fs::status(path, error).type();
  return type != fs::file_type::not_found && type != fs::file_type::none;
}

bool isControl(char c) {
  return static_cast<unsigned char>(c) < ' ' || c == 0x7F;
}

/// Reads until the buffer is full or the file ends; how many bytes, none after an error.
std::optional<std::size_t> readInto(int file, std::string& buffer) {
  std::size_t got = 0;
  while (got < buffer.size()) {
    const ssize_t count = read(file, buffer.data() + got, buffer.size() - got);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return {};
    if (count == 0) break;
    got += static_cast<std::size_t>(count);
  }
  return got;
}

}  // namespace

ConfigFolders configFolders() {
  std::error_code error;
  ConfigFolders folders{fs::current_path(error), homeFolder(), {}, etcFolder() / "tavek"};
  if (error) folders.current.clear();
  const fs::path program = fs::read_symlink("/proc/self/exe", error);
  if (!error) folders.program = program.parent_path();
  return folders;
}

std::optional<fs::path> findConfigFile(std::string_view name, const ConfigFolders& folders) {
  for (const fs::path* folder : {&folders.current, &folders.home, &folders.program, &folders.system}) {
    if (!folder->empty() && stands(*folder / name)) return *folder / name;
  }
  if (folders.home.empty()) return {};
  const fs::path stub = folders.home / name;
  ensureConfigStub(stub);
  return stands(stub) ? std::optional(stub) : std::nullopt;
}

void ensureConfigStub(const fs::path& path) {
  if (path.empty() || stands(path)) return;
  std::error_code ignored;
  fs::create_directories(path.parent_path(), ignored);
  // Keys go in there: nobody else may read it, from its first moment on.
  const Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR));
  constexpr std::string_view nothing = "{}\n";
  if (file.isOpen() && write(file.get(), nothing.data(), nothing.size()) < 0) unlink(path.c_str());
}

std::optional<std::string> readConfigText(const fs::path& path) {
  constexpr std::size_t most = 64 * 1024;
  // A pipe without a writer must not hold the start.
  const Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  struct stat status = {};
  if (!file.isOpen() || fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return {};
  std::string text(most, '\0');
  const auto size = readInto(file.get(), text);
  if (!size) return {};
  text.resize(*size);
  std::erase(text, '\n');
  return text;
}

std::optional<std::string> readConfigString(std::string_view text, std::string_view key) {
  constexpr std::size_t npos = std::string_view::npos;
  const std::size_t start = text.find('"' + std::string(key) + '"');
  if (start == npos) return {};
  const std::size_t colon = text.find(':', start + key.size() + 2);
  const std::size_t open = colon != npos ? text.find('"', colon) : npos;
  const std::size_t close = open != npos ? text.find('"', open + 1) : npos;
  if (close == npos || close == open + 1) return {};
  const std::string_view value = text.substr(open + 1, close - open - 1);
  if (std::ranges::any_of(value, isControl)) return {};
  return std::string(value);
}

void readTmdbConfig(std::string_view text, Credentials& credentials) {
  readKeys(tmdbKeys, text, credentials);
}

void readFanartConfig(std::string_view text, Credentials& credentials) {
  readKeys(fanartKeys, text, credentials);
}

Credentials loadCredentials(const ConfigFolders& folders) {
  Credentials credentials;
  if (const auto path = findConfigFile(tmdbConfigName, folders)) {
    if (const auto text = readConfigText(*path)) readTmdbConfig(*text, credentials);
    if (tmdbConsoleEnabled) console::logTmdb("config loaded from " + path->string());
  }
  if (credentials.hasFanart()) return credentials;
  if (const auto path = findConfigFile(fanartConfigName, folders)) {
    if (const auto text = readConfigText(*path)) readFanartConfig(*text, credentials);
    if (fanartConsoleEnabled && credentials.hasFanart())
      console::logFanart("fanart config loaded from " + path->string());
  }
  return credentials;
}

}  // namespace tavek
