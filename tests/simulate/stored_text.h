#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

/// The stored state as somebody else reads and writes it: by another parser than the program's.
namespace tavek::test {

inline std::optional<nlohmann::json> readStored(const std::filesystem::path& file) {
  std::ifstream input(file);
  auto json = nlohmann::json::parse(input, nullptr, false);
  if (!json.is_object()) return {};
  return json;
}

/// Whether each position is one of the media.
inline bool positionsAreWithin(const nlohmann::json& json, std::int64_t limitUs) {
  for (const auto& [key, value] : json.items()) {
    if (value.is_structured() && !positionsAreWithin(value, limitUs)) return false;
    const bool position = key == "seek" && value.is_number();
    if (position && (value.get<double>() < 0 || value.get<double>() > static_cast<double>(limitUs)))
      return false;
  }
  return true;
}

/// As another instance would: whole, at once, and with a user that only it knows. False if there is no whole
/// text to add to.
inline bool addUser(const std::filesystem::path& file, const std::string& name) {
  auto json = readStored(file);
  if (!json) return false;
  (*json)["users"][name]["mode"] = "movies";
  const std::filesystem::path other = file.string() + ".other";
  std::ofstream(other) << json->dump(1, '\t');
  std::filesystem::rename(other, file);
  return true;
}

}  // namespace tavek::test
