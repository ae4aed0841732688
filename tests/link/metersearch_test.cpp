#include "link/metersearch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>

#include "tests/support/fakeport.h"
#include "tests/support/fakewaiter.h"

namespace qv3 {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

const std::string kNode = "/dev/ttyUSB0";
const std::string kOtherNode = "/dev/ttyUSB2";

/// Ports that answer "V" after 20 ms as `replies` says, with everything that happens in one log.
struct Rig {
  Rig() {
    port.onSend = [this](std::string_view characters) {
      if (characters != "V\r") return;
      waiter.after(0.02, [this, path = port.path()] {
        if (port.path() == path) port.feed(replies[path]);
      });
    };
  }

  void plug(const std::string& path, const std::string& reply) {
    port.nodes[path] = {};
    replies[path] = reply;
  }

  SearchResult probe(const std::string& reply) {
    plug(kNode, reply);
    return search.searchOne(1, false);
  }

  std::vector<std::string> log;
  std::map<std::string, std::string> replies;
  test::FakePort port{log};
  test::FakeWaiter waiter{log};
  CommPort comm{port};
  PortTable table;
  std::vector<std::string> status;
  MeterSearch search{comm, table, waiter, [this](const auto& text) { status.push_back(text); }};
};

struct Start {
  std::string model;
  bool remote;
  std::vector<std::string> sequence;  // after the identification
};

void PrintTo(const Start& start, std::ostream* out) {
  *out << start.model << (start.remote ? " remote" : " local");
}

class StreamStart : public testing::TestWithParam<Start> {};

TEST_P(StreamStart, SendsEveryCommandAtItsTime) {
  Rig rig;
  rig.plug(kNode, "V,QV" + GetParam().model + ",1.07,55\r");
  const SearchResult result = rig.search.searchOne(1, GetParam().remote);

  std::vector<std::string> expected = {"open " + kNode, "wait 540", "send Q",
                                       "wait 108",      "send Q",   "wait 100",
                                       "send V",        "wait 500", "close"};
  expected.insert(expected.end(), GetParam().sequence.begin(), GetParam().sequence.end());
  EXPECT_THAT(rig.log, ElementsAreArray(expected));
  EXPECT_EQ(result.end, SearchEnd::Found);
  EXPECT_EQ(result.port, 1);
  EXPECT_EQ(result.identity.MeterVersion, GetParam().model);
  EXPECT_EQ(result.identity.MeterField3, "55");
  EXPECT_THAT(rig.status, ElementsAre("Checking Port 1 for Hardware"));
}

INSTANTIATE_TEST_SUITE_P(
    Models, StreamStart,
    testing::Values(
        Start{"40", false, {"open " + kNode, "send U", "send R", "send O"}},
        Start{"2A", true, {"open " + kNode, "send U", "send R", "send O"}},
        Start{"3A", false, {"open " + kNode, "wait 540", "send U", "send R"}},
        Start{"31",
              false,
              {"open " + kNode, "wait 540", "send SL", "wait 540", "send U", "wait 540", "send R"}},
        Start{"31",
              true,
              {"open " + kNode, "wait 540", "send SR", "wait 540", "send U", "wait 540", "send R"}},
        Start{"99", false, {}}));

TEST(MeterSearch, GivesAReplyItsTimeAndNoMore) {
  const struct {
    double from;
    double to;
    bool found;
  } rows[] = {{0.01, 0.49, true}, {0.45, 0.69, true}, {0.69, 0.72, false}, {0.72, 0.73, false}};
  for (const auto& row : rows) {
    Rig rig;
    rig.plug(kNode, "");
    rig.port.onSend = [&](std::string_view characters) {
      if (characters != "V\r") return;
      rig.waiter.after(row.from, [&] { rig.port.feed("V,Q"); });
      rig.waiter.after(row.to, [&] { rig.port.feed("V40,1,2\r"); });
    };
    EXPECT_EQ(rig.search.searchOne(1, false).end == SearchEnd::Found, row.found) << row.to;
  }
}

TEST(MeterSearch, ASilentOrStrangeDeviceIsClosedAgain) {
  for (const char* reply : {"", "V,QW40,1,2\r", "OK\r", "\x80\xff\r\r\r", "P1A2B\rV,QV40,1,2\r"}) {
    Rig rig;
    const SearchResult result = rig.probe(reply);
    EXPECT_EQ(result.end, SearchEnd::NotFound) << reply;
    EXPECT_EQ(result.port, 0);
    EXPECT_EQ(rig.log.back(), "close") << reply;
    EXPECT_THAT(rig.status, ElementsAre("Checking Port 1 for Hardware", "No Hardware Detected"));
  }
}

TEST(MeterSearch, WhatAStreamingMeterSentBeforeIsDiscarded) {
  Rig rig;
  for (int frame = 0; frame < 35; ++frame) {
    rig.waiter.after(0.02 * frame, [&] { rig.port.feed("P1A2B\r"); });  // until the last discarding
  }
  EXPECT_EQ(rig.probe("V,QV3A,1,2\r").end, SearchEnd::Found);
}

TEST(MeterSearch, AFloodThatNeverEndsIsNoMeter) {
  Rig rig;
  const std::string chunk(1000, 'V');
  for (int n = 0; n < 200; ++n) rig.waiter.after(0.01 * n, [&] { rig.port.feed(chunk); });
  EXPECT_EQ(rig.probe("").end, SearchEnd::NotFound);
  EXPECT_EQ(rig.comm.waiting(), 0U);
}

TEST(MeterSearch, AReplyIsNeverTakenForData) {
  Rig rig;
  int events = 0;
  rig.comm.setObserver({[&] { ++events; }, {}});
  rig.comm.setReceiveThreshold(6);
  EXPECT_EQ(rig.probe("V,QV3A,1,2\r").end, SearchEnd::Found);
  EXPECT_EQ(events, 0);
  EXPECT_EQ(rig.comm.receiveThreshold(), 0U);
  EXPECT_TRUE(rig.comm.isOpen());
}

TEST(MeterSearch, FieldsOfTheMeterBeforeStayWhereAReplyHasNone) {
  Rig rig;
  rig.probe("V,QV40,1.07,55\r");
  const MeterIdentity identity = rig.probe("V,QV3A\r").identity;
  EXPECT_EQ(identity.MeterVersion, "3A");
  EXPECT_EQ(identity.MeterModel, "QV40");
  EXPECT_EQ(identity.MeterField2, "1.07");
  EXPECT_EQ(identity.MeterField3, "55");
}

TEST(MeterSearch, GoesOverTheExistingPortsAndStopsAtTheFirstMeter) {
  Rig rig;
  rig.plug(kNode, "");
  rig.plug(kOtherNode, "V,QV3A,1,2\r");
  rig.plug("/dev/ttyACM0", "V,QV40,1,2\r");
  rig.port.nodes["/dev/ttyACM1"] = {PortFault::Busy, "in use"};
  const SearchResult result = rig.search.searchAll(false);
  EXPECT_EQ(result.end, SearchEnd::Found);
  EXPECT_EQ(result.port, 3);
  EXPECT_EQ(rig.port.path(), kOtherNode);
  EXPECT_THAT(rig.status,
              ElementsAre("Checking Port 1 for Hardware", "Checking Port 3 for Hardware"));
  EXPECT_TRUE(rig.table.exists(9));
  EXPECT_FALSE(rig.table.exists(2));
  EXPECT_THAT(result.reasons,
              ElementsAre("Port Comm10: (/dev/ttyACM1) could not be opened: in use"));
}

TEST(MeterSearch, WithoutPortsItEndsAtOnceAndARetryFindsWhatWasPluggedIn) {
  Rig rig;
  const SearchResult result = rig.search.searchAll(false);
  EXPECT_EQ(result.end, SearchEnd::NotFound);
  EXPECT_EQ(rig.waiter.waits, 0);
  EXPECT_THAT(rig.status, ElementsAre("No Hardware Detected"));
  EXPECT_THAT(result.reasons, IsEmpty());

  rig.plug(kNode, "V,QV40,1,2\r");
  EXPECT_EQ(rig.search.searchAll(false).port, 1);
}

TEST(MeterSearch, APortThatCannotBeOpenedIsProbedWithoutAWaitAndSaysWhy) {
  Rig rig;
  rig.port.nodes[kNode] = {PortFault::NoPermission, "permission denied"};
  const SearchResult result = rig.search.searchOne(1, false);
  EXPECT_EQ(result.end, SearchEnd::NotFound);
  EXPECT_EQ(rig.waiter.waits, 0);
  EXPECT_THAT(result.reasons,
              ElementsAre("Port Comm1: (/dev/ttyUSB0) could not be opened: permission denied"));
}

TEST(MeterSearch, GivenUpInAnyWaitItClosesThePortAndTriesNoOther) {
  int waits = 0;
  for (bool found = false; !found; ++waits) {
    Rig rig;
    rig.plug(kNode, "V,QV31,1,2\r");
    rig.plug(kOtherNode, "V,QV31,1,2\r");
    rig.waiter.giveUpAtWait = waits;
    const SearchResult result = rig.search.searchAll(false);
    found = result.end == SearchEnd::Found;
    if (found) break;
    EXPECT_EQ(result.end, SearchEnd::GivenUp) << waits;
    EXPECT_EQ(result.port, 0) << waits;
    EXPECT_FALSE(rig.comm.isOpen()) << waits;
    EXPECT_THAT(rig.status, ElementsAre("Checking Port 1 for Hardware")) << waits;
  }
  EXPECT_EQ(waits, 7);
}

TEST(MeterSearch, ASearchAfterOneThatWasGivenUpIsANewOne) {
  Rig rig;
  rig.waiter.giveUpAtWait = 0;
  EXPECT_EQ(rig.probe("").end, SearchEnd::GivenUp);
  rig.waiter.resume();
  EXPECT_EQ(rig.probe("").end, SearchEnd::NotFound);
  EXPECT_EQ(rig.search.searchAll(false).end, SearchEnd::NotFound);
  EXPECT_EQ(rig.probe("V,QV40,1,2\r").end, SearchEnd::Found);
}

TEST(MeterSearch, ALineThatGoesInAnyWaitLeavesTheNextPortToBeTried) {
  for (int tenths = 1; tenths < 28; ++tenths) {
    Rig rig;
    rig.plug(kNode, "V,QV31,1,2\r");
    rig.plug(kOtherNode, "V,QV31,1,2\r");
    rig.waiter.after(tenths / 10.0 + 0.05, [&] {
      rig.port.nodes.erase(kNode);
      rig.port.lose();
    });
    const SearchResult result = rig.search.searchAll(false);
    EXPECT_EQ(result.end, SearchEnd::Found) << tenths;
    EXPECT_EQ(result.port, 3) << tenths;
  }
}

TEST(MeterSearch, AMeterThatIsGoneBeforeItsStreamStartsIsNotFound) {
  Rig rig;
  rig.plug(kNode, "");
  rig.port.onSend = [&](std::string_view characters) {
    if (characters != "V\r") return;
    rig.port.feed("V,QV40,1,2\r");
    rig.port.nodes[kNode] = {PortFault::Busy, "in use"};
  };
  const SearchResult result = rig.search.searchOne(1, false);
  EXPECT_EQ(result.end, SearchEnd::NotFound);
  EXPECT_THAT(result.reasons,
              ElementsAre("Port Comm1: (/dev/ttyUSB0) could not be opened: in use"));
}

}  // namespace
}  // namespace qv3
