#include <gtest/gtest.h>

#include "base/UUID.h"

namespace lumenary {
namespace {

TEST(UUIDTest, textInEitherCaseIsReadAndWrittenInUpperCase) {
  const UUID uuid{{0x12, 0x3E, 0x45, 0x67, 0xE8, 0x9B, 0x12, 0xD3, 0xA4, 0x56, 0x42, 0x66, 0x14, 0x17, 0x40, 0x0F}};
  EXPECT_EQ(uuid.text(), "123E4567-E89B-12D3-A456-42661417400F");
  EXPECT_EQ(UUID::parse("123E4567-E89B-12D3-A456-42661417400F"), uuid);
  EXPECT_EQ(UUID::parse("123e4567-e89b-12d3-a456-42661417400f"), uuid);
  for (const std::string_view text : {"", "123E4567E89B12D3A45642661417400F", "{123E4567-E89B-12D3-A456-42661417400F}",
                                      "123E4567-E89B-12D3-A456-42661417400", "123E4567-E89B-12D3-A456-42661417400FF",
                                      "123E4567-E89B-12D3-A456-42661417400G", "123E4567-E89B-12D3-A456+42661417400F",
                                      "123E456-7E89B-12D3-A456-42661417400F", "-23E4567-E89B-12D3-A456-42661417400F"}) {
    EXPECT_EQ(UUID::parse(text), std::nullopt) << text;
  }
}

TEST(UUIDTest, randomOnesDifferAndCarryVersionAndVariant) {
  const UUID uuid = UUID::random();
  EXPECT_EQ(uuid.bytes[6] >> 4, 4);
  EXPECT_EQ(uuid.bytes[8] >> 6, 2);
  EXPECT_NE(uuid, UUID::random());
}

}  // namespace
}  // namespace lumenary
