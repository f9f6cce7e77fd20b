#include "state/json_write.h"

#include <cstdio>
#include <memory>
#include <system_error>

#include "base/file_write.h"

namespace tavek {
namespace {

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

}  // namespace

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

void ensureJsonFile(const std::filesystem::path& path) {
  if (path.empty()) return;
  std::error_code ignored;
  std::filesystem::create_directories(path.parent_path(), ignored);
  // "x" leaves a file alone that is there, or that another thread has made just now.
  const std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path.c_str(), "wxe"));
  if (file) std::fputs("{}\n", file.get());
}

void writeJsonAtomic(const std::filesystem::path& path, const std::vector<JsonMember>& members) {
  replaceFile(path, compactObject(members));
}

}  // namespace tavek
