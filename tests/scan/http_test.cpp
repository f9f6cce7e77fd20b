#include "scan/http.h"

#include <gtest/gtest.h>
namespace tavek {
TEST(UrlEncode, KeepsWhatIsPlain) {
  EXPECT_EQ(urlEncode("Se7en & Co"), "Se7en+%26+Co");
}
}
