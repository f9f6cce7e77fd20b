#pragma once

#include <string_view>

namespace tavek {

/// The order of names in lists: runs of digits count as numbers of any length, so "episode 2" comes before
/// "episode 10"; all other bytes count as unsigned ones. Names that differ only in leading zeros are ordered
/// as plain text.
bool lessNatural(std::string_view a, std::string_view b);

}  // namespace tavek
