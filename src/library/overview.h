#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace tavek {

/// The "overview" in a metadata.json, which is scanned rather than parsed: one line, none if it is not there
/// or blank. The file is read to a megabyte.
std::optional<std::string> readOverview(const std::filesystem::path& path);
std::optional<std::string> overviewIn(std::string_view text);

}  // namespace tavek
