#include "app/informational.h"

#include <sstream>

#include <gmock/gmock.h>

namespace tavek {

template <typename... Arguments>
std::string printed(void (*print)(std::ostream&, Arguments...), const std::decay_t<Arguments>&... arguments) {
  std::ostringstream out;
  print(out, arguments...);
  return out.str();
}

TEST(Decoders, ArePrintedByTypeInColumns) {
  const std::string green = "\033[1m\033[38;2;0;255;0m";
  const std::string cyan = "\033[0m \033[1m\033[38;2;0;255;255m";
  EXPECT_EQ(printed(printDecoders, {{AVMEDIA_TYPE_UNKNOWN, {1, {"odd"}}},
                                    {AVMEDIA_TYPE_VIDEO, {123456789, {"v1", "v2"}}},
                                    {AVMEDIA_TYPE_DATA, {1, {}}},
                                    {AVMEDIA_TYPE_SUBTITLE, {1, {"s"}}}}),
            "\033[1m\033[38;2;255;255;0mDecoder summary:\033[0m\n"
            "\033[1m\033[38;2;255;255;255mType         Count    Sample decoders\033[0m\n" +
                green + "video       " + cyan + "12345678\033[0m\n  - v1\n  - v2\n" + green + "subtitle    " +
                cyan + "1       \033[0m\n  - s\n" + green + "data        " + cyan + "1       \033[0m\n" +
                green + "unknown     " + cyan + "1       \033[0m\n  - odd\n\n");
  EXPECT_EQ(printed(printDecoders, {}), "No decoders found.\n");
}

}  // namespace tavek
