#include "link/identification.h"

#include <gtest/gtest.h>

namespace qv3 {
namespace {

constexpr const char* kOld = "old";

struct Row {
  const char* received;
  bool meter;
  const char* version;
  const char* model;
  const char* field2;
  const char* field3;
};

constexpr Row kRows[] = {
    {"V,QV3A,1.07,00123\r", true, "3A", "QV3A", "1.07", "00123"},
    {"V,QV3A,1.07,00123\rV,QV40,2,3\r", true, "3A", "QV3A", "1.07", "00123"},
    {"\nV, QV31\x01,B2 beta,\xe9S-7,8:9\n\r", true, "31", "QV31", "B2", "S-7,8:9"},
    {"V,QVZZ,1,2\r", true, "ZZ", "QVZZ", "1", "2"},
    {"V,QV40,1.07\r", true, "40", "QV40", kOld, kOld},
    {"V,QV2A,,\r", true, "2A", "QV2A", "", ""},
    {"V,QV2A\r", true, "2A", kOld, kOld, kOld},
    {"V,QV3\r", true, "3", kOld, kOld, kOld},
    {"V,QV\r", true, "", kOld, kOld, kOld},
    {"V,Q\r", false, kOld, kOld, kOld, kOld},
    {"v,qv3a,1,2\r", false, kOld, kOld, kOld, kOld},
    {"P1A2B\rV,QV3A,1,2\r", false, kOld, kOld, kOld, kOld},
    {"?V,QV3A,1,2\r", false, kOld, kOld, kOld, kOld},
    {"\r", false, kOld, kOld, kOld, kOld}};

TEST(Identification, KeepsWhatTheReplySays) {
  for (const Row& row : kRows) {
    ReplyCollector collector;
    EXPECT_TRUE(collector.add(row.received));
    MeterIdentity identity{kOld, kOld, kOld, kOld};
    EXPECT_EQ(takeReply(collector.reply(), identity), row.meter) << row.received;
    EXPECT_EQ(identity.MeterVersion, row.version) << row.received;
    EXPECT_EQ(identity.MeterModel, row.model) << row.received;
    EXPECT_EQ(identity.MeterField2, row.field2) << row.received;
    EXPECT_EQ(identity.MeterField3, row.field3) << row.received;
  }
}

TEST(Identification, CollectsAReplyThatComesInPieces) {
  ReplyCollector collector;
  EXPECT_FALSE(collector.add("V,Q"));
  EXPECT_FALSE(collector.add(""));
  EXPECT_FALSE(collector.add("V3A,1,2"));
  EXPECT_EQ(collector.reply(), "V,QV3A,1,2");
  EXPECT_TRUE(collector.add("\rP1A2B"));
  EXPECT_TRUE(collector.add("P"));
  EXPECT_EQ(collector.reply(), "V,QV3A,1,2");
}

TEST(Identification, ABabblingLineDoesNotFillTheMemory) {
  ReplyCollector collector;
  for (int n = 0; n < 1000; ++n) EXPECT_FALSE(collector.add("V,QV3A,ABCDEFGH"));
  EXPECT_EQ(collector.reply().size(), ReplyCollector::kLimit);
}

}  // namespace
}  // namespace qv3
