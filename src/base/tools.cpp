#include "base/tools.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <unistd.h>

namespace tavek {
namespace {

namespace fs = std::filesystem;

bool isExecutable(const fs::path& file) {
  std::error_code ignored;
  return fs::is_regular_file(file, ignored) && access(file.c_str(), X_OK) == 0;
}

}  // namespace

std::string shellQuote(std::string_view text) {
  std::string quoted = "'";
  for (const char c : text) {
    if (c == '\'') quoted += "'\\'";  // ends the quotes, then a quote of its own; the next ones open below
    quoted += c;
  }
  return quoted += '\'';
}

std::string toolCommand(std::string_view name, std::initializer_list<std::string_view> places) {
  const char* folder = std::getenv("TAVEK_TOOL_DIR");
  if (folder != nullptr && *folder != '\0') {
    const fs::path file = fs::path(folder) / name;
    if (isExecutable(file)) return shellQuote(file.string());
  }
  for (const std::string_view place : places) {
    std::error_code ignored;
    if (fs::exists(place, ignored)) return std::string(place);
  }
  return std::string(name);
}

}  // namespace tavek
