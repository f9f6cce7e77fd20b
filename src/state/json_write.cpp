#include "state/json_write.h"

#include <fcntl.h>
#include <string_view>
#include <system_error>
#include <tuple>

#include "base/descriptor.h"
#include "base/file_write.h"

namespace tavek {

std::string escapeString(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    switch (c) {
      case '"':
        escaped += "\\\"";
        break;
      case '\\':
        escaped += "\\\\";
        break;
      case '\r':
        escaped += "\\r";
        break;
      case '\n':
        escaped += "\\n";
        break;
      case '\t':
        escaped += "\\t";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

std::string quotedString(std::string_view text) {
  return '"' + escapeString(text) + '"';
}

void appendRaw(FieldState& state, int tabs, std::string_view key, std::string_view value) {
  if (state.written) state.text += state.separator;
  state.text.append(static_cast<std::size_t>(tabs), '\t')
      .append("\"")
      .append(key)
      .append("\": ")
      .append(value);
  state.written = true;
}

void appendField(FieldState& state, int tabs, std::string_view key, const std::optional<std::string>& value) {
  if (value && !value->empty()) appendRaw(state, tabs, key, quotedString(*value));
}

std::string compactObject(const std::vector<JsonMember>& members) {
  std::string text;
  for (const auto& [key, value] : members) {
    text.append(text.empty() ? "{\"" : ",\"").append(key).append("\":").append(value);
  }
  return text.empty() ? "{}" : text + '}';
}

void ensureJsonFile(const std::filesystem::path& path, mode_t mode) {
  if (path.empty()) return;
  std::error_code ignored;
  std::filesystem::create_directories(path.parent_path(), ignored);
  // Leaves a file alone that is there, or that another thread has made just now.
  const Descriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
  constexpr std::string_view empty = "{}\n";
  if (file.isOpen()) std::ignore = ::write(file.get(), empty.data(), empty.size());
}

void writeJsonAtomic(const std::filesystem::path& path, const std::vector<JsonMember>& members) {
  replaceFile(path, compactObject(members));
}

}  // namespace tavek
