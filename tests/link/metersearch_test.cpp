#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "link/metersearch.h"
#include "link/porttable.h"
#include "link/tickwait.h"
#include "tests/support/fakeport.h"
#include "tests/support/fakewaiter.h"

namespace qv3 {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(PortTable, StandsForTheUsualNodes) {
  const PortTable table;
  for (const auto& [number, path] :
       {std::pair(1, "/dev/ttyUSB0"), std::pair(8, "/dev/ttyUSB7"), std::pair(9, "/dev/ttyACM0"),
        std::pair(12, "/dev/ttyACM3"), std::pair(13, "/dev/ttyS0"), std::pair(16, "/dev/ttyS3"),
        std::pair(-1, ""), std::pair(0, ""), std::pair(17, ""), std::pair(32000, "")}) {
    EXPECT_EQ(table.path(number), path) << number;
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
  EXPECT_EQ(table.name("5=line/meter"), "");
  EXPECT_EQ(table.path(5), (std::filesystem::current_path() / "line/meter").string());
}

TEST(PortTable, BadEntriesAreToldAndTheOthersCount) {
  using Row = std::pair<std::string, const char*>;
  for (const auto& [entry, told] :
       {Row{"0=/dev/x", "1 to 16"}, Row{"17=/dev/x", "1 to 16"}, Row{"=/dev/x", "1 to 16"},
        Row{"3x=/dev/x", "1 to 16"}, Row{"+3=/dev/x", "1 to 16"},
        Row{"99999999999=/dev/x", "1 to 16"}, Row{"/dev/x", "NUMBER=PATH"}, Row{"3", "NUMBER=PATH"},
        Row{"3=", "path is missing"}, Row{"3= \t", "path is missing"}}) {
    PortTable table;
    EXPECT_THAT(table.nameAll(entry + ",4=/dev/four", ','), ElementsAre(HasSubstr(told))) << entry;
    EXPECT_EQ(table.path(3), "/dev/ttyUSB2") << entry;
    EXPECT_EQ(table.path(4), "/dev/four") << entry;
  }
}

TEST(PortTable, AScanKeepsWhyAPresentNodeCouldNotBeOpenedAndWhatHelps) {
  const PortResult denied{PortFault::NoPermission, "permission denied", "join"};
  const PortResult missing{PortFault::NotFound, "missing", "look"};
  const PortResult broken{PortFault::InputOutput, "input/output error"};
  PortTable table;
  ASSERT_EQ(table.name("3=/dev/three"), "");
  table.expect(13);
  for (const auto& [port, result] :
       {std::pair(1, PortResult{}), std::pair(2, PortResult{PortFault::Busy, "in use", "end it"}),
        std::pair(3, missing), std::pair(4, missing), std::pair(9, broken), std::pair(11, denied),
        std::pair(13, missing), std::pair(14, denied), std::pair(16, broken),
        std::pair(15, PortResult{PortFault::Lost, "the device is gone"}),
        std::pair(17, PortResult{})}) {
    table.scanned(port, result);
    EXPECT_EQ(table.exists(port), port == 1) << port;
  }
  EXPECT_THAT(table.reasons(),
              ElementsAre("Port Comm2: (/dev/ttyUSB1) could not be opened: in use",
                          "Port Comm3: (/dev/three) could not be opened: missing",
                          "Port Comm9: (/dev/ttyACM0) could not be opened: input/output error",
                          "Port Comm11: (/dev/ttyACM2) could not be opened: permission denied",
                          "Port Comm13: (/dev/ttyS0) could not be opened: missing",
                          "Port Comm14: (/dev/ttyS1) could not be opened: permission denied"));
  EXPECT_THAT(table.helps(), ElementsAre("end it", "look", "join")) << "each once";

  table.opened(1, {PortFault::Busy, "in use"});
  EXPECT_TRUE(table.exists(1)) << "only a scan tells what exists";
  for (int port = 1; port <= PortTable::kLast; ++port) table.scanned(port, {});
  EXPECT_THAT(table.reasons(), IsEmpty());
}

TEST(Identification, KeepsWhatTheReplySays) {
  struct Row {
    const char* received;
    const char* kept;  ///< version, model and fields; nothing if it is no meter's reply
  };
  for (const Row& row :
       {Row{"V,QV3A,1.07,00123\r", "3A|QV3A|1.07|00123"},
        Row{"V,QV3A,1.07,00123\rV,QV40,2,3\r", "3A|QV3A|1.07|00123"},
        Row{"\nV, QV31\x01,B2 beta,\xe9S-7,8:9\n\r", "31|QV31|B2|S-7,8:9"},
        Row{"V,QVZZ,1,2\r", "ZZ|QVZZ|1|2"}, Row{"V,QV40,1.07\r", "40|QV40|old|old"},
        Row{"V,QV2A,,\r", "2A|QV2A||"}, Row{"V,QV2A\r", "2A|old|old|old"},
        Row{"V,QV3\r", "3|old|old|old"}, Row{"V,QV\r", "|old|old|old"}, Row{"V,Q\r", nullptr},
        Row{"v,qv3a,1,2\r", nullptr}, Row{"P1A2B\rV,QV3A,1,2\r", nullptr},
        Row{"?V,QV3A,1,2\r", nullptr}, Row{"\r", nullptr}}) {
    ReplyCollector collector;
    EXPECT_TRUE(collector.add(row.received));
    EXPECT_TRUE(collector.add("P1A2B")) << "what follows is not looked at";
    MeterIdentity identity{"old", "old", "old", "old"};
    EXPECT_EQ(takeReply(collector.reply(), identity), row.kept != nullptr) << row.received;
    EXPECT_EQ(identity.MeterVersion + '|' + identity.MeterModel + '|' + identity.MeterField2 + '|' +
                  identity.MeterField3,
              row.kept ? row.kept : "old|old|old|old")
        << row.received;
  }
}

TEST(TickWait, EndsWhenItsTimeHasCome) {
  const struct {
    const char* what;
    double start, seconds;
    std::vector<double> running;  ///< times told at which it goes on
    double over;                  ///< the time told at which it ends
  } rows[] = {{"ten ticks by day", 1000, 0.54, {1000, 1000.3, 1000.539}, 1000.54},
              {"the end is skipped", 1000, 0.54, {1000.1}, 1003},
              {"nothing to wait for", 1000, 0, {}, 1000},
              {"across midnight", 86399.8, 0.54, {86399.9, 86399.999, 0, 0.2, 0.33}, 0.35},
              {"midnight is the end", 86399.5, 0.5, {86399.99}, 0.01},
              {"first told after midnight", 86399.9, 1, {0.5, 0.8}, 0.95},
              {"the clock is set back by an hour", 40000, 0.54, {40000.2}, 36400},
              {"the clock is set forward", 40000, 0.54, {40000.2}, 43600}};
  for (const auto& row : rows) {
    TickWait wait(row.start, row.seconds);
    EXPECT_NEAR(wait.remaining(), row.seconds, 1e-9) << row.what;
    for (const double time : row.running) {
      EXPECT_FALSE(wait.over(time)) << row.what << " " << time;
      const double left = row.start + row.seconds - (time < row.start ? time + 86400 : time);
      EXPECT_NEAR(wait.remaining(), left, 1e-9) << row.what << " " << time;
    }
    EXPECT_TRUE(wait.over(row.over)) << row.what;
    EXPECT_EQ(wait.remaining(), 0) << row.what;
  }
}

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

TEST(MeterSearch, SendsEveryCommandAtItsTime) {
  const struct {
    const char* model;
    bool remote;
    std::string stream;  ///< what follows the identification
  } rows[] = {
      {"40", false, "open, send U, send R, send O"},
      {"2A", true, "open, send U, send R, send O"},
      {"3A", false, "open, wait 540, send U, send R"},
      {"31", false, "open, wait 540, send SL, wait 540, send U, wait 540, send R"},
      {"31", true, "open, wait 540, send SR, wait 540, send U, wait 540, send R"},
      {"99", false, ""},
  };
  for (const auto& row : rows) {
    Rig rig;
    int events = 0;
    rig.comm.setObserver({[&] { ++events; }, {}});
    rig.comm.setReceiveThreshold(6);
    rig.plug(kNode, std::string("V,QV") + row.model + ",1.07,55\r");
    const SearchResult result = rig.search.searchOne(1, row.remote);
    std::string done;
    for (const std::string& step : rig.log) {
      done += (done.empty() ? "" : ", ") + (step == "open " + kNode ? "open" : step);
    }
    EXPECT_EQ(done, "open, wait 540, send Q, wait 108, send Q, wait 100, send V, wait 500, close" +
                        (row.stream.empty() ? "" : ", " + row.stream))
        << row.model;
    EXPECT_EQ(events, 0) << "a reply is never taken for data";
    EXPECT_EQ(rig.comm.receiveThreshold(), 0U);
    EXPECT_EQ(rig.comm.isOpen(), !row.stream.empty());
    EXPECT_EQ(result.end, SearchEnd::Found);
    EXPECT_EQ(result.port, 1);
    EXPECT_EQ(result.identity.MeterVersion, row.model);
    EXPECT_EQ(result.identity.MeterField3, "55");
    EXPECT_THAT(rig.status, ElementsAre("Checking Port 1 for Hardware"));
  }
}

TEST(MeterSearch, GivesAReplyItsTimeAndNoMore) {
  struct Row {
    double from, to;
    bool found;
  };
  for (const Row& row : {Row{0.01, 0.49, true}, Row{0.45, 0.69, true}, Row{0.69, 0.72, false},
                         Row{0.72, 0.73, false}}) {
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

TEST(MeterSearch, WhatCameBeforeTheQuestionIsDiscardedAndAFloodIsNoMeter) {
  const std::string chunk(1000, 'V');
  for (const bool flood : {false, true}) {
    Rig rig;
    for (int n = 0; n < (flood ? 100 : 35); ++n) {  // 35: until the last discarding
      rig.waiter.after(0.02 * n, [&] { rig.port.feed(flood ? chunk : "P1A2B\r"); });
    }
    const SearchResult result = rig.probe(flood ? "" : "V,QV3A,1,2\r");
    EXPECT_EQ(result.end, flood ? SearchEnd::NotFound : SearchEnd::Found);
    EXPECT_EQ(rig.comm.waiting(), 0U);
  }
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

TEST(MeterSearch, WithoutAPortThatOpensItEndsAtOnceAndARetryFindsWhatWasPluggedIn) {
  Rig rig;
  EXPECT_EQ(rig.search.searchAll(false).end, SearchEnd::NotFound);
  rig.port.nodes[kNode] = {PortFault::NoPermission, "permission denied"};
  const SearchResult result = rig.search.searchOne(1, false);
  EXPECT_EQ(result.end, SearchEnd::NotFound);
  EXPECT_EQ(rig.waiter.waits, 0);
  EXPECT_EQ(rig.status.back(), "No Hardware Detected");
  EXPECT_THAT(result.reasons,
              ElementsAre("Port Comm1: (/dev/ttyUSB0) could not be opened: permission denied"));
  rig.plug(kNode, "V,QV40,1,2\r");
  EXPECT_EQ(rig.search.searchAll(false).port, 1);
}

TEST(MeterSearch, GivenUpInAnyWaitItClosesThePortAndTheNextOneIsANewOne) {
  constexpr int kWaits = 7;
  for (int waits = 0; waits <= kWaits; ++waits) {
    Rig rig;
    rig.plug(kNode, "V,QV31,1,2\r");
    rig.plug(kOtherNode, "V,QV31,1,2\r");
    rig.waiter.giveUpAtWait = waits;
    const SearchResult result = rig.search.searchAll(false);
    EXPECT_EQ(result.end, waits < kWaits ? SearchEnd::GivenUp : SearchEnd::Found) << waits;
    EXPECT_EQ(result.port, waits < kWaits ? 0 : 1) << waits;
    EXPECT_EQ(rig.comm.isOpen(), waits == kWaits) << waits;
    EXPECT_THAT(rig.status, ElementsAre("Checking Port 1 for Hardware")) << waits;
    rig.waiter.resume();
    EXPECT_EQ(rig.search.searchAll(false).end, SearchEnd::Found) << waits;
    EXPECT_EQ(rig.probe("").end, SearchEnd::NotFound) << waits;
  }
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
  EXPECT_THAT(result.reasons, ElementsAre(testing::EndsWith("could not be opened: in use")));
}

}  // namespace
}  // namespace qv3
