#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

#include "state/json_read.h"

/// JSON is written field by field in a fixed layout.
namespace tavek {

/// What has to stand between the quotes for a string to be read back as it was.
std::string escapeString(std::string_view text);
/// The same with its quotes.
std::string quotedString(std::string_view text);

/// An object in the making.
struct FieldState {
  std::string text;
  std::string_view separator = ",\n";
  bool written = false;  ///< a field was written, so the next one has the separator before it
};
/// A value that is rendered already; the key is escaped already.
void appendRaw(FieldState& state, int tabs, std::string_view key, std::string_view value);
/// A string, unless it is empty.
void appendField(FieldState& state, int tabs, std::string_view key, const std::optional<std::string>& value);

/// An object in one line without blanks.
std::string compactObject(const std::vector<JsonMember>& members);

/// Creates the file with an empty object unless it is there. Another thread that writes it meanwhile wins.
void ensureJsonFile(const std::filesystem::path& path, mode_t mode = 0666);
/// Replaces the file by an object in one line. A failure leaves the old file and is not reported.
void writeJsonAtomic(const std::filesystem::path& path, const std::vector<JsonMember>& members);

}  // namespace tavek
