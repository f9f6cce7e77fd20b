#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "state/json_read.h"

/// Finding values in the replies of services, as in state/json_read.h; matchBrace is the one from there. Any
/// bytes may be passed, and each function takes a time in proportion to their number.
namespace tavek {

/// Whether a list stands under this key, at any depth.
bool hasList(const std::string& body, std::string_view key);
/// The objects of the first list under this key, in its order and at most so many.
std::vector<std::string> listObjects(const std::string& body, std::string_view key, std::size_t atMost);

/// The values of members, as readMembers gives them: of the last member with the key; none for another type.
std::optional<std::string> stringMember(const std::vector<JsonMember>& members, std::string_view key);
/// From 0 on; a quoted number counts.
std::optional<std::int32_t> numberMember(const std::vector<JsonMember>& members, std::string_view key);

}  // namespace tavek
