#include "measurement/Gost341194.h"

#include <gtest/gtest.h>

#include <string>

using namespace measurement;

namespace {

// The example set of the standard's own annex, which has published answers.
constexpr GostSubstitution kExampleSet = {{
    {1, 15, 13, 0, 5, 7, 10, 4, 9, 2, 3, 14, 6, 11, 8, 12},
    {13, 11, 4, 1, 3, 15, 5, 9, 0, 10, 14, 7, 6, 8, 2, 12},
    {4, 11, 10, 0, 7, 2, 1, 13, 3, 6, 8, 5, 9, 12, 15, 14},
    {6, 12, 7, 1, 5, 15, 13, 8, 4, 10, 9, 14, 0, 3, 11, 2},
    {7, 13, 10, 1, 0, 8, 9, 15, 14, 4, 6, 12, 11, 2, 5, 3},
    {5, 8, 1, 13, 10, 3, 4, 2, 14, 15, 12, 7, 6, 0, 9, 11},
    {14, 11, 4, 12, 6, 13, 15, 10, 2, 3, 8, 1, 0, 7, 5, 9},
    {4, 10, 9, 2, 13, 8, 0, 14, 6, 11, 1, 12, 7, 15, 5, 3},
}};

struct KnownAnswer {
  const char* fault;
  std::string message;
  const char* digest;
};

const KnownAnswer kPublished[] = {
    {"FinalBlocks", "", "CE85B99CC46752FFFEE35CAB9A7B0278ABB4C2D2055CFF685AF4912C49490F8D"},
    {"OneWholeBlock", "This is message, length=32 bytes",
     "B1C466D37519B82E8319819FF32595E047A28CB6F83EFF1C6916A815A637FFFA"},
    {"PaddedBlock", "Suppose the original message has length = 50 bytes",
     "471ABA57A60A770D3A76130635C1FBEA4EF14DE51F78B4AE57DD893B62F55208"},
    {"SumCarries", std::string(1000000, 'a'),
     "5C00CCC2734CDD3332D3D4749576E3C1A7DBAF0E7EA74E9FA602413C90A129FA"}};

TEST(Gost341194, GivesThePublishedAnswersHoweverTheMessageComes) {
  for (const auto& [fault, message, digest] : kPublished) {
    for (const std::size_t piece : {1, 7, 31, 33, 100, 1000000}) {
      Gost341194 hash(kExampleSet);
      for (std::size_t i = 0; i <= message.size(); i += piece) {
        hash.Update(std::string_view(message).substr(i, piece));
      }
      EXPECT_EQ(ToHexText(hash.Finish()), digest) << fault << ", pieces of " << piece;
    }
  }
}

TEST(Gost341194, DetectorFileSetIsTheDefault) {
  Gost341194 by_default;
  Gost341194 named(kDetectorFileSubstitution);
  EXPECT_EQ(ToHexText(named.Finish()),
            "3B5CCDAAEED7C61EE21D5435649CCFDA088CD6D28D439645CA9173911985BFF3");
  EXPECT_EQ(ToHexText(by_default.Finish()),
            "3B5CCDAAEED7C61EE21D5435649CCFDA088CD6D28D439645CA9173911985BFF3");
}

}  // namespace
