#include "LoopbackSockets.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <array>
#include <string>

#include "LoopbackPeer.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint16_t kServerPort = 0xA365;
constexpr std::uint16_t kClientPort = 0x85A8;

const std::string kHeader =
    "  sl  local_address rem_address   st tx_queue rx_queue tr tm->when retrnsmt   uid  timeout "
    "inode                                                     \n";

// Of a listener and of both ends of a connection to it.
const std::string kListener =
    "   2: 0100007F:A365 00000000:0000 0A 00000000:00000001 00:00000000 00000000  1001        0 "
    "2726971 2 00000000dad9a4a7 100 0 0 10 0                   \n";
const std::string kAccepted =
    " 431: 0100007F:A365 0100007F:85A8 01 00000000:00000000 00:00000000 00000000  1002        0 "
    "2726981 1 00000000f2f9b6c8 20 0 0 10 -1                   \n";
const std::string kClientEnd =
    " 621: 0100007F:85A8 0100007F:A365 01 00000000:00000000 00:00000000 00000000  1003        0 "
    "2726972 2 000000001c9366e6 20 0 0 10 -1                   \n";

std::string ListenerOn(const std::string& address, const std::string& user) {
    const std::string nowhere(address.size(), '0');
    return "   0: " + address + ":A365 " + nowhere +
           ":0000 0A 00000000:00000000 00:00000000 00000000 " + user +
           " 0 2726996 1 0000000061ab6a7e 100 0 0 10 0\n";
}

std::vector<uid_t> OwnersIn(const std::string& tcp, const std::string& tcp6 = "") {
    return CLoopbackSockets(kHeader + tcp, tcp6).OwnersOfServer(kServerPort, kClientPort);
}

TEST(LoopbackSockets, NameTheListenerAndWhoHasAccepted) {
    EXPECT_THAT(OwnersIn(kListener + kAccepted + kClientEnd), ElementsAre(1001, 1002));
}

TEST(LoopbackSockets, NameWhoHasAcceptedWhenNobodyListensAnyMore) {
    EXPECT_THAT(OwnersIn(kClientEnd + kAccepted), ElementsAre(1002));
}

TEST(LoopbackSockets, NameNobodyForAConnectionThatWaitsToBeAccepted) {
    const std::string waiting =
        " 667: 0100007F:A365 0100007F:85A8 01 00000000:00000000 00:00000000 00000000     0        "
        "0 0 1 00000000c609767b 20 0 0 10 -1                         \n";
    EXPECT_THAT(OwnersIn(waiting + kClientEnd), IsEmpty());
    EXPECT_THAT(OwnersIn(kListener + waiting + kClientEnd), ElementsAre(1001));
}

TEST(LoopbackSockets, NameListenersOfEveryAddressThatTakesTheConnection) {
    EXPECT_THAT(OwnersIn(ListenerOn("0100007F", "7")), ElementsAre(7));
    EXPECT_THAT(OwnersIn(ListenerOn("00000000", "7")), ElementsAre(7));
    EXPECT_THAT(OwnersIn("", ListenerOn("00000000000000000000000000000000", "7")), ElementsAre(7));
    EXPECT_THAT(OwnersIn("", ListenerOn("0000000000000000FFFF00000100007F", "7")), ElementsAre(7));
    EXPECT_THAT(OwnersIn("", ListenerOn("0000000000000000FFFF000000000000", "7")), ElementsAre(7));
}

TEST(LoopbackSockets, NameNoListenersOfOtherAddresses) {
    EXPECT_THAT(OwnersIn(ListenerOn("0200007F", "7") + ListenerOn("0100000A", "7")), IsEmpty());
    EXPECT_THAT(OwnersIn("", ListenerOn("00000000000000000000000001000000", "7") +
                                 ListenerOn("B80D01200000000000000000010000FF", "7") +
                                 ListenerOn("0000000000000000FFFF00000200007F", "7") +
                                 ListenerOn("0000000000000000000000000100007F", "7")),
                IsEmpty());
}

TEST(LoopbackSockets, NameEveryListenerOfThePort) {
    EXPECT_THAT(OwnersIn(ListenerOn("0100007F", "1001") + ListenerOn("00000000", "1002"),
                         ListenerOn("0000000000000000FFFF00000100007F", "1003")),
                ElementsAre(1001, 1002, 1003));
}

TEST(LoopbackSockets, LeaveOutAListenerForIpv6AloneBesideAnother) {
    const std::string everyIpv6 = ListenerOn("00000000000000000000000000000000", "1002");
    EXPECT_THAT(OwnersIn(kListener, everyIpv6), ElementsAre(1001));
    EXPECT_THAT(OwnersIn(kAccepted, everyIpv6), ElementsAre(1002, 1002));
}

TEST(LoopbackSockets, NameWhoHasAcceptedOnAnIpv6Socket) {
    EXPECT_THAT(OwnersIn("",
                         "   1: 0000000000000000FFFF00000100007F:A365 "
                         "0000000000000000FFFF00000100007F:85A8 01 00000000:00000000 00:00000000 "
                         "00000000 65534        0 2726998 1 0000000078e0b180 20 0 0 10 -1\n"),
                ElementsAre(65534));
}

TEST(LoopbackSockets, NameNobodyForOtherPorts) {
    const CLoopbackSockets sockets(kHeader + kListener + kAccepted + kClientEnd, "");
    EXPECT_THAT(sockets.OwnersOfServer(0xA364, kClientPort), IsEmpty());
    EXPECT_THAT(sockets.OwnersOfServer(kServerPort, 0x85A9), ElementsAre(1001));
}

TEST(LoopbackSockets, NameNobodyForConnectionsBetweenOtherAddresses) {
    EXPECT_THAT(
        OwnersIn(" 431: 0100007F:A365 0200007F:85A8 01 00000000:00000000 00:00000000 00000000 "
                 "1002 0 2726981 1 00000000f2f9b6c8 20 0 0 10 -1\n"),
        IsEmpty());
}

TEST(LoopbackSockets, FindTheEndOfAConnection) {
    const CLoopbackSockets sockets(kHeader + kListener + kAccepted + kClientEnd, "");
    const LoopbackSocket* const end = sockets.FindEnd(kClientPort, kServerPort);
    ASSERT_NE(end, nullptr);
    EXPECT_EQ(end->owner, 1003U);
    EXPECT_EQ(end->inode, 2726972U);
    EXPECT_EQ(sockets.FindEnd(kClientPort, kClientPort), nullptr);
    // A listener is no end.
    EXPECT_EQ(sockets.FindEnd(kServerPort, 0), nullptr);
}

TEST(LoopbackSockets, TakeNothingFromALineThatIsCut) {
    const std::string line = kListener.substr(0, kListener.find('\n'));
    for (std::size_t length = 0; length <= line.size(); ++length) {
        EXPECT_THAT(OwnersIn(line.substr(0, length)), IsEmpty()) << length;
    }
    EXPECT_THAT(OwnersIn(line + "\n"), ElementsAre(1001));
}

TEST(LoopbackSockets, TakeNothingFromAColumnThatIsSpoilt) {
    const std::string sound = "0: 0100007F:A365 00000000:0000 0A 0:0 0:0 0 1001 0 27";
    ASSERT_THAT(OwnersIn(sound + "\n"), ElementsAre(1001));
    for (const std::size_t at : {3U, 10U, 11U, 12U, 15U, 31U, 43U, 46U, 50U, 51U}) {
        std::string spoilt = sound;
        spoilt[at] = '?';
        EXPECT_THAT(OwnersIn(spoilt + "\n"), IsEmpty()) << spoilt;
    }
    EXPECT_THAT(OwnersIn("0: 0100007F:1A365 00000000:0000 0A 0:0 0:0 0 1001 0 27\n"), IsEmpty());
    EXPECT_THAT(OwnersIn("0: 7F:A365 00000000:0000 0A 0:0 0:0 0 1001 0 27\n"), IsEmpty());
    EXPECT_THAT(OwnersIn("\n\n   \n"), IsEmpty());
}

TEST(LoopbackSockets, AreReadFromTheKernel) {
    const LoopbackListener listener;
    int error = -1;
    const auto sockets = CLoopbackSockets::Read(error);
    ASSERT_TRUE(sockets.has_value());
    EXPECT_EQ(error, 0);
    EXPECT_THAT(sockets->OwnersOfServer(listener.Port(), 1), ElementsAre(geteuid()));
}

TEST(LoopbackSockets, OfEveryListenerAreReadFromTheKernel) {
    const std::array<LoopbackListener, 40> listeners;
    const LoopbackConnection connection = listeners.front().Connect();
    int error = -1;
    const auto sockets = CLoopbackSockets::ReadListeners(error);
    ASSERT_TRUE(sockets.has_value());
    EXPECT_EQ(error, 0);
    for (const LoopbackListener& listener : listeners) {
        EXPECT_THAT(sockets->OwnersOfServer(listener.Port(), 1), ElementsAre(geteuid()));
    }
}

}  // namespace
