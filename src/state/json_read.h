#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iosfwd>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// JSON is read by searching the text for keys: there is no document tree, and nothing checks the whole, so a
/// half-written file still gives what it holds. A key is found wherever it stands first, at any depth; a
/// caller first cuts out the object that it wants. Any bytes may be passed, nothing here recurses, and a
/// result is empty where nothing usable was found.
namespace tavek {

/// Every byte that is left of the stream.
std::string readWholeFile(std::istream& stream);

/// Where the value of a key begins; may be the end of the text.
std::optional<std::size_t> findValue(const std::string& text, std::string_view key);
/// Only what a double can hold.
std::optional<double> readNumber(const std::string& text, std::string_view key);
/// The decimal digits of a number, pulled into range.
std::optional<std::int64_t> readInteger(const std::string& text, std::string_view key);
/// Bare true or false.
std::optional<bool> readBool(const std::string& text, std::string_view key);
/// Empty text if the closing quote is missing.
std::optional<std::string> readString(const std::string& text, std::string_view key);
/// The string behind a path of keys, which have to be in the order of the text.
std::optional<std::string> readStringAt(const std::string& text,
                                        std::initializer_list<std::string_view> keys);
/// From the brace to its partner, both included.
std::optional<std::string> readObject(const std::string& text, std::string_view key);
/// The first brace anywhere behind the key.
std::optional<std::size_t> findObjectStart(const std::string& text, std::string_view key);
/// Up to where the text or the array ends; what is no string in it is left out.
std::vector<std::string> readStringArray(const std::string& text, std::string_view key);

/// The partner of the brace at `open`.
std::optional<std::size_t> matchBrace(const std::string& text, std::size_t open);
/// One object and nothing else, from its first to its last byte well-formed, and no key twice in an object.
bool isWholeJson(const std::string& text);
/// Worth a copy before it is replaced: more than nothing, and not whole.
bool isDamaged(const std::string& text);
/// One object and nothing else but white space, as far as its braces tell.
bool isOneObject(const std::string& text);
/// The string that begins at `position`, which is then led behind it. Without a value it stays, and then no
/// string that starts further behind ends either.
std::optional<std::string> parseString(const std::string& text, std::size_t& position);
/// The first place from `position` on that is no white space.
std::size_t skipSpace(const std::string& text, std::size_t position);

/// A key and its value as they stand in a file, byte for byte; the key is without its quotes.
struct JsonMember {
  std::string key;
  std::string value;
  bool operator==(const JsonMember&) const = default;
};
/// The members of the object that the text begins with, as far as they are well-formed and complete.
std::vector<JsonMember> readMembers(const std::string& text);

/// The object with the members under these keys alone, so that a search meets none of the like inside of
/// others, which are given as `unknown`. A text that is not whole stays as it is, for what can be found in
/// it.
std::string knownPart(const std::string& text, std::span<const std::string_view> keys,
                      std::vector<JsonMember>& unknown);

/// Cut off behind the point, and pulled into range.
std::int64_t wholeNumber(double number);

/// What `read` gives for the first of the keys that it gives anything for.
template <typename Read>
auto readFirst(Read read, const std::string& text, std::initializer_list<std::string_view> keys)
    -> decltype(read(text, std::string_view())) {
  for (const std::string_view key : keys) {
    if (auto value = read(text, key)) return value;
  }
  return {};
}

}  // namespace tavek
