#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace tavek {

/// The value of the first "overview" in a text of JSON, on one line. It is looked for as text, so what is cut
/// short or broken further on still tells what it has. None where it is missing or blank.
std::optional<std::string> overviewIn(std::string_view text);

/// The same of a file, of which no more than the first MiB is read. None for one that can't be read.
std::optional<std::string> readOverview(const std::filesystem::path& file);

}  // namespace tavek
