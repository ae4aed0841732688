#include "link/porttable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace qv3 {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(PortTable, StandsForTheUsualNodes) {
  const PortTable table;
  EXPECT_EQ(table.path(1), "/dev/ttyUSB0");
  EXPECT_EQ(table.path(8), "/dev/ttyUSB7");
  EXPECT_EQ(table.path(9), "/dev/ttyACM0");
  EXPECT_EQ(table.path(12), "/dev/ttyACM3");
  EXPECT_EQ(table.path(13), "/dev/ttyS0");
  EXPECT_EQ(table.path(16), "/dev/ttyS3");
  for (const int number : {-1, 0, 17, 32000}) {
    EXPECT_EQ(table.path(number), "") << number;
    EXPECT_FALSE(table.exists(number)) << number;
  }
}

TEST(PortTable, EntriesReplaceNodesAndTheEarlierNamedWins) {
  PortTable table;
  EXPECT_EQ(table.name("3=/dev/pts/5"), "");
  EXPECT_THAT(table.nameAll(" 3=/dev/pts/6 , 16 = /dev/my meter,,1=/dev/a=b", ','), IsEmpty());
  EXPECT_THAT(table.nameAll("16=/dev/later\r\n\r\n2=/dev/x,y\r\n2=/dev/z", '\n'), IsEmpty());
  EXPECT_EQ(table.path(1), "/dev/a=b");
  EXPECT_EQ(table.path(2), "/dev/x,y");
  EXPECT_EQ(table.path(3), "/dev/pts/5");
  EXPECT_EQ(table.path(4), "/dev/ttyUSB3");
  EXPECT_EQ(table.path(16), "/dev/my meter");
}

TEST(PortTable, ARelativePathCountsFromTheFolderOfItsNaming) {
  PortTable table;
  EXPECT_EQ(table.name("5=line/meter"), "");
  EXPECT_EQ(table.path(5), (std::filesystem::current_path() / "line/meter").string());
}

TEST(PortTable, BadEntriesAreToldAndTheOthersCount) {
  const struct {
    const char* entry;
    const char* told;
  } rows[] = {{"0=/dev/x", "1 to 16"},   {"17=/dev/x", "1 to 16"},
              {"=/dev/x", "1 to 16"},    {"3x=/dev/x", "1 to 16"},
              {"+3=/dev/x", "1 to 16"},  {"99999999999=/dev/x", "1 to 16"},
              {"/dev/x", "NUMBER=PATH"}, {"3", "NUMBER=PATH"},
              {"3=", "path is missing"}, {"3= \t", "path is missing"}};
  for (const auto& row : rows) {
    PortTable table;
    EXPECT_THAT(table.nameAll(std::string(row.entry) + ",4=/dev/four", ','),
                ElementsAre(HasSubstr(row.told)))
        << row.entry;
    EXPECT_EQ(table.path(3), "/dev/ttyUSB2") << row.entry;
    EXPECT_EQ(table.path(4), "/dev/four") << row.entry;
  }
}

TEST(PortTable, AScanKeepsWhyAPresentNodeCouldNotBeOpened) {
  PortTable table;
  table.scanned(1, {});
  table.scanned(2, {PortFault::Busy, "in use"});
  table.scanned(3, {PortFault::NotFound, "there is no such device"});
  table.scanned(9, {PortFault::InputOutput, "input/output error"});
  table.scanned(13, {PortFault::InputOutput, "input/output error"});
  table.scanned(14, {PortFault::NoPermission, "permission denied"});
  table.scanned(15, {PortFault::Lost, "the device is gone"});
  table.scanned(17, {});
  EXPECT_TRUE(table.exists(1));
  for (const int port : {2, 3, 9, 13, 14, 15, 17}) EXPECT_FALSE(table.exists(port)) << port;
  EXPECT_THAT(table.reasons(),
              ElementsAre("Port Comm2: (/dev/ttyUSB1) could not be opened: in use",
                          "Port Comm9: (/dev/ttyACM0) could not be opened: input/output error",
                          "Port Comm14: (/dev/ttyS1) could not be opened: permission denied"));

  table.opened(1, {PortFault::Busy, "in use"});
  EXPECT_TRUE(table.exists(1)) << "only a scan tells what exists";
  for (int port = 1; port <= PortTable::kLast; ++port) table.scanned(port, {});
  EXPECT_THAT(table.reasons(), IsEmpty());
}

TEST(PortTable, AMissingDeviceIsToldWhereOneWasNamedOrIsExpected) {
  PortTable table;
  ASSERT_EQ(table.name("3=/dev/three"), "");
  table.expect(13);
  for (int port = 1; port <= PortTable::kLast; ++port) {
    table.scanned(port, {PortFault::NotFound, "missing", "look"});
  }
  EXPECT_THAT(table.reasons(),
              ElementsAre("Port Comm3: (/dev/three) could not be opened: missing",
                          "Port Comm13: (/dev/ttyS0) could not be opened: missing"));
}

TEST(PortTable, WhatHelpsIsToldOnce) {
  PortTable table;
  table.scanned(1, {PortFault::NoPermission, "no", "join"});
  table.scanned(2, {PortFault::NoPermission, "no", "join"});
  table.scanned(3, {PortFault::Busy, "in use", "end it"});
  table.scanned(4, {PortFault::NotFound, "missing", "look"});
  table.scanned(5, {PortFault::Other, "odd", ""});
  EXPECT_THAT(table.helps(), ElementsAre("join", "end it"));
}

}  // namespace
}  // namespace qv3
