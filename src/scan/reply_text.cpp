#include "scan/reply_text.h"

#include <algorithm>
#include <charconv>

#include "base/text.h"

namespace tavek {
namespace {

constexpr std::size_t npos = std::string::npos;

std::optional<std::int32_t> numberAt(std::string_view text, std::size_t at) {
  while (at < text.size() && isAsciiSpace(text[at])) ++at;
  if (at < text.size() && text[at] == '+') ++at;
  std::int32_t number = 0;
  const char* start = text.data() + std::min(at, text.size());
  const auto [end, error] = std::from_chars(start, text.data() + text.size(), number);
  return error == std::errc() ? std::optional(number) : std::nullopt;
}

/// Behind the bracket that opens the first list under the key, or npos.
std::size_t insideList(const std::string& body, std::string_view key) {
  const std::string quoted = '"' + std::string(key) + '"';
  for (std::size_t at = body.find(quoted); at != npos; at = body.find(quoted, at)) {
    at = skipSpace(body, at + quoted.size());
    if (at >= body.size() || body[at] != ':') continue;
    at = skipSpace(body, at + 1);
    if (at < body.size() && body[at] == '[') return at + 1;
  }
  return npos;
}

const std::string* valueOf(const std::vector<JsonMember>& members, std::string_view key) {
  const auto last = std::ranges::find(members.rbegin(), members.rend(), key, &JsonMember::key);
  return last != members.rend() ? &last->value : nullptr;
}

}  // namespace

bool hasList(const std::string& body, std::string_view key) {
  return insideList(body, key) != npos;
}

std::vector<std::string> listObjects(const std::string& body, std::string_view key, std::size_t atMost) {
  std::vector<std::string> objects;
  std::size_t at = insideList(body, key);
  while (at < body.size() && body[at] != ']' && objects.size() < atMost) {
    if (body[at] != '{') {
      ++at;
      continue;
    }
    const auto close = matchBrace(body, at);
    // Nothing behind it closes either: looking on would take forever.
    if (!close) break;
    objects.push_back(body.substr(at, *close - at + 1));
    at = *close + 1;
  }
  return objects;
}

std::optional<std::string> stringMember(const std::vector<JsonMember>& members, std::string_view key) {
  const std::string* value = valueOf(members, key);
  std::size_t start = 0;
  return value != nullptr ? parseString(*value, start) : std::nullopt;
}

std::optional<std::int32_t> numberMember(const std::vector<JsonMember>& members, std::string_view key) {
  const std::string* value = valueOf(members, key);
  if (value == nullptr) return {};
  const auto number = numberAt(*value, value->starts_with('"') ? 1 : 0);
  return number && *number >= 0 ? number : std::nullopt;
}

}  // namespace tavek
