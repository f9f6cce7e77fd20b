#include <gmock/gmock.h>

#include "state/json_write.h"
#include "state/texts.h"

namespace tavek {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsSubsetOf;

/// What a reader finds for the key "x".
template <auto read>
std::string shown(const std::string& text) {
  const auto value = read(text, "x");
  return value ? testing::PrintToString(*value) : "-";
}

TEST(JsonRead, FindsWhatTheTextHolds) {
  const std::map<std::string, std::string (*)(const std::string&)> readers{
      {"value", shown<findValue>}, {"number", shown<readNumber>}, {"integer", shown<readInteger>},
      {"bool", shown<readBool>},   {"string", shown<readString>}, {"object", shown<readObject>}};
  for (const auto& [text, expected] : table(R"(
      value {"x" "b": 1} => 10 ;; value {"x": => 5 ;; value {"x => - ;; integer {"x":-7.9} => -7
      integer {"x":99999999999999999999 => 9223372036854775807 ;; integer {"x":} => -
      number {"x": 1e3} => 1000 ;; number {"x": +5} => 5 ;; number {"x": "12"} => - ;; number {"x":nan => -
      bool {"x" :  true => true ;; bool {"x":false => false ;; bool {"x": "true"} => -
      string {"x": 12, "y": "z"} => "y" ;; string {"x": "a\"\\"} => "a\"\\" ;; string {"x": 1} => -
      string {"x": "a => "" ;; object {"x", "x":{"y":1}} => "{\"y\":1}"
      object {"x":{"y":"}"}} => "{\"y\":\"}\"}" ;; object {"x":{"y":"\"}} => -)")) {
    EXPECT_EQ(readers.at(text.substr(0, text.find(' ')))(text.substr(text.find('{'))), expected) << text;
  }
  const std::string nested = R"({"a":{"b":"c\"d"},"e":"f"})";
  EXPECT_EQ(*readStringAt(nested, {"a", "b"}) + *readStringAt(nested, {"a", "e"}), "c\"df");
  EXPECT_EQ(readStringAt(nested, {"e", "a"}), std::nullopt);
  EXPECT_THAT(readStringArray(R"({"x", [ "a" "b\n",, 1 {"c"] "d")", "x"), ElementsAre("a", "b\n", "c"));
  EXPECT_THAT(readStringArray(R"({"x": ["a\qb\u0041\/\b\f","b)", "x"), ElementsAre("abA/\b\f"));
  for (const auto& [text, members] : table(R"(
      { "a\"b" :  [1, {"c":"]}"} ] ,"d":"\"," } => {"a\"b":[1, {"c":"]}"} ],"d":"\","}
      {"a":1,"b":2 => {"a":1} ;; {"a":1,"b":[2}} => {"a":1} ;; {"a":1,"b":},"c":3} => {"a":1}
      {"a":1} {"b":2} => {"a":1} ;; ["a":1] => {})"))
    EXPECT_EQ(compactObject(readMembers(text)), members) << text;
  for (const auto& [escaped, string] : table(R"(\u00e9\u6218 => é战 ;; \uD83C\uDFACx => 🎬x ;; \u12 => 12
      \ud83cx\udfac => �x� ;; \ud83c\u0041 => �A)"))
    EXPECT_EQ(readString(R"({"x":")" + escaped + "\"}", "x"), string) << escaped;
  for (const auto& [text, whole] : table(R"(
      {} => 1 ;; {"a":[1,-2.5e3,{"b":null}],"c":"\"}"} => 1 ;; {"a":1} x => 0 ;; {"a":1,} => 0 ;; {"a":[1,]} => 0
      {"a" 1} => 0 ;; {"a":tru} => 0 ;; {"a":1,"a":2} => 0 ;; {"a":[{]}} => 0 ;; {"a":"b} => 0 ;; ["a"] => 0
      {a:1} => 0 ;; {"a":} => 0 ;; {"a":{"b":1} => 0)"))
    EXPECT_EQ(isWholeJson(text), whole == "1") << text;
  EXPECT_FALSE(isWholeJson("{\"a\":\"b,\n\"}")) << "a lost quote";
  EXPECT_TRUE(readMembers("{\"a\":" + std::string(1000000, '[')).empty());
}

/// What a save makes of a text, without blanks, without empty main rooms and with "DEFAULT" for the two users
/// of a fresh store and "A:" for a lone user A; "*" in front if the text asks for a save.
std::string migrated(const std::string& text) {
  bool changed = false;
  std::string saved = stateText(readStoredState(text, changed));
  std::erase_if(saved, isAsciiSpace);
  for (const auto& [old, now] : table(R"("movies":{"watched":[]} => ~ ;; "tv":{"watched":[]} => ~
      "video":{"watched":[]} => ~ ;; ~, => ;; ,~ => ;; ~ =>
      "users":{"Alex":{},"Maria":{}} => DEFAULT ;; {"user":"A","users":{"A":{ => A:)")) {
    for (std::size_t at = 0; (at = saved.find(old, at)) != std::string::npos;)
      saved.replace(at, old.size(), now);
  }
  return (changed ? "*" : "") + saved;
}

TEST(StoredState, Migrates) {
  for (const auto& [text, expected] : table(R"(
      A "mode":"Series" => *A:"mode":"tv" ;; A "Mode":"kids" => A:"mode":"kids" ;; A "mode":"" => *A: ;; A "mode":{} => A:"mode/":{"watched":[]}
      A "x":{"seek":5} => *A:"x":{"watched":[]} ;; A "series":{"watched":["tv/a"]} => A:"tv":{"watched":["tv/a"]}
      A "series":{"playing":"tv/a"},"tv":{"watched":["tv/b"]} => A:"tv":{"watched":["tv/b"]}
      A "tvshows":{"Watched":["tv/b","tv/a"]} => A:"tv":{"watched":["tv/a","tv/b"]}
      A "Video":{"Playing":"video/a","seek":7} => A:"video":{"playing":"video/a","seek":7,"watched":[]}
      A "X":{"playing":"x/a","offset":50} => *A:"x":{"playing":"x/a","seek":50,"watched":[]}
      A "X":{"playing":"x/a","offsetUs":-5} => *A:"x":{"playing":"x/a","seek":-5,"watched":[]}
      A "x":{"playing":""} => *A:"x":{"watched":[]} ;; A "x":{"watched":["","b"]} => *A:"x":{"watched":["b"]}
      A "movies":{"playing":"x/a","seek":7} => *A:"x":{"playing":"x/a","seek":7,"watched":[]}
      A "tv":{"playing":"x/a","seek":7},"x":{"playing":"x/a"} => *A:"x":{"playing":"x/a","seek":7,"watched":[]}
      A "video":{"playing":"x/a","seek":7},"x":{"playing":"x/b"} => *A:"x":{"playing":"x/b","watched":[]}
      A "x":{"playing":"Tv/a"} => *A:"tv":{"playing":"Tv/a","watched":[]},"x":{"watched":[]}
      A "mode":"tv","mode/":{"watched":["mode/a"]} => A:"mode":"tv","mode/":{"watched":["mode/a"]}
      A "mode":{"watched":["mode/a"]} => A:"mode/":{"watched":["mode/a"]}
      A "New":{"a":{"watched":[1]}},"b":{"mode":"tv"} => A:"New":{"a":{"watched":[1]}},"b":{"mode":"tv"}
      A "x":{"new":{"seek":5},"playing":"x/a"} => A:"x":{"playing":"x/a","watched":[],"new":{"seek":5}}
      A "tv":{"playing":"/else/movies/a","seek":7} => A:"tv":{"playing":"/else/movies/a","seek":7,"watched":[]}
      A "new":[1, {"b":"]}"}],"mode":"tv","\"":null => A:"mode":"tv","new":[1,{"b":"]}"}],"\"":null
      => {DEFAULT} ;; {"users":["C","B","C"]} => {"user":"C","users":{"C":{},"B":{}}}
      {"Users":["A"],"ActiveUser":"B"} => {"user":"B","users":{"A":{}}}
      {"user":"","User":"A","users":{"":{},"B":{},"B":{"mode":"tv"}}} => {"user":"B","users":{"B":{}}}
      {"users":{"C":{},"B":{}, "Cut":{ => {"user":"C","users":{"C":{},"B":{}}}
      {"users":{"A":{"movies":{"watched":["x"] => {DEFAULT} ;; {"sound":"STEREO","WiFiHistory":[]} => {DEFAULT}
      {"Sound":"Surround","TmdbScanEpoch":1.9e3} => {"tmdbScanEpoch":1900,"sound":"surround",DEFAULT}
      {"FanartScanEpoch":-1e99,"tmdbScanLabel":" "} => {"fanartScanEpoch":-9223372036854775808,DEFAULT}
      {"FanartScanEpoch":1e99,"sound":"Auto"} => {"fanartScanEpoch":9223372036854775807,"sound":"auto",DEFAULT}
      {"b" : {"a":[]},"SettingsTab":"users","x":tru,"y":"cut => {"settingsTab":"users",DEFAULT,"b":{"a":[]},"x":tru}
      )")) {
    const bool isUser = text.starts_with("A ");
    EXPECT_EQ(migrated(isUser ? R"({"users":{"A":{)" + text.substr(2) + "}}}" : text),
              expected + (isUser ? "}}}" : ""));
  }
}

const auto sample = [](const char* name) { return contentOf(std::string(TAVEK_SAMPLES "/") + name); };

TEST(StoredState, KeepsItsLayoutAndEveryName) {
  for (const char* name : {"full_state.json", "smallest_state.json"})
    EXPECT_EQ(stateText(stateOf(sample(name))), sample(name));
  for (const std::string name : {"a\"b", "c\\", "\td\r\n", "\xc3\xa9{}[],:", "\\\"", "\"watched\""}) {
    StoredState state;
    state.settingsTab = state.activeUser = name;
    state.userNames = state.wifiHistory = {name, "B"};
    completeUsers(state);
    RoomState& room = roomStateOf(state.profiles[name], "kids" + name);
    room.playing = "kids" + name + "/a";
    room.watched = {name};
    EXPECT_EQ(stateText(stateOf(stateText(state))), stateText(state));
  }
}

TEST(StoredState, TakesWhatIsLeftOfADamagedFile) {
  const std::string full = sample("full_state.json");
  const StoredState whole = stateOf(full);
  for (std::size_t size = 0; size < full.size(); ++size) {
    StoredState state = stateOf(full.substr(0, size));
    ASSERT_THAT(state.userNames, IsSubsetOf(whole.userNames)) << size;
    ASSERT_THAT(state.wifiHistory, IsSubsetOf(whole.wifiHistory)) << size;
    ASSERT_TRUE(size < full.find("\"Maria\"") || state.profiles["Alex"].movies.seek == 1234567) << size;
  }
}

}  // namespace
}  // namespace tavek
