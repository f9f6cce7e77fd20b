#pragma once

#include <filesystem>
#include <optional>

namespace tavek {

class Display;

/// Whether stderr gets a line for each outcome too.
enum class Console { Told, Silent };

/// The file that plays for the poster selected on the strip. None where there is none to play; why then
/// stands on the screen.
std::optional<std::filesystem::path> selectedItem(Display& display, Console console);

}  // namespace tavek
