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

/// The next string behind the first such key; behind a number or null that is the name of the next key.
std::optional<std::string> findJsonString(const std::string& body, std::string_view key);
/// The bytes from the end of the marker to the next quote, as they stand.
std::optional<std::string> findRawString(std::string_view body, std::string_view marker);
/// The number behind the marker and white space, if it is above 0.
std::optional<std::int32_t> findJsonInt(std::string_view body, std::string_view marker);

/// Whether a list stands under this key, at any depth.
bool hasList(const std::string& body, std::string_view key);
/// The objects of the first list under this key, in its order and at most so many.
std::vector<std::string> listObjects(const std::string& body, std::string_view key, std::size_t atMost);

/// The values of members, as readMembers gives them: of the last member with the key; none for another type.
std::optional<std::string> stringMember(const std::vector<JsonMember>& members, std::string_view key);
/// From 0 on; a quoted number counts.
std::optional<std::int32_t> numberMember(const std::vector<JsonMember>& members, std::string_view key);

}  // namespace tavek
