#include "JsonIpcFrameReader.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

#include "LogCapture.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

std::string Header(char id, const std::string& length) {
    std::string header(9, '\0');
    header[0] = id;
    std::copy(length.begin(), length.end(), header.begin() + 1);
    return header;
}

const std::string kLength2048("\x00\x08", 2);
const std::string kLength2049("\x01\x08", 2);

/// Stands where the socket is: collects arriving bytes until there are as many as asked for.
class Stream {
public:
    explicit Stream(std::size_t maximum) : m_reader(maximum) {}

    void Arrive(const std::string& bytes, std::size_t atOnce) {
        for (std::size_t start = 0; start < bytes.size(); start += atOnce) {
            m_arrived += bytes.substr(start, atOnce);
            while (m_nextSize != 0 && m_arrived.size() >= m_nextSize) {
                TakeOneRead();
            }
        }
    }

    [[nodiscard]] const std::vector<std::string>& Steps() const { return m_steps; }

private:
    void TakeOneRead() {
        const std::string read = m_arrived.substr(0, m_nextSize);
        m_arrived.erase(0, m_nextSize);
        const JsonIpcFrameStep step = m_reader.ProcessReceivedData(read.data(), read.size());
        m_nextSize = step.nextSize;
        m_steps.push_back(Described(step));
    }

    static std::string Described(const JsonIpcFrameStep& step) {
        switch (step.outcome) {
            case JsonIpcFrameStep::Outcome::message:
                return "message " + std::to_string(step.messageId) + " " +
                       (step.payload != nullptr ? std::string(step.payload, step.length) : "null") +
                       ", then " + std::to_string(step.nextSize);
            case JsonIpcFrameStep::Outcome::need:
                return "need " + std::to_string(step.nextSize);
            default:
                return "refusal, then " + std::to_string(step.nextSize);
        }
    }

    CJsonIpcFrameReader m_reader;
    std::string m_arrived;
    std::size_t m_nextSize = kFrameHeaderSize;
    std::vector<std::string> m_steps;
};

/// The parameter is how many bytes arrive at once.
class JsonIpcFrameStream : public ::testing::TestWithParam<std::size_t> {
protected:
    std::vector<std::string> StepsOf(const std::string& bytes, std::size_t maximum = 2048) {
        Stream stream(maximum);
        stream.Arrive(bytes, GetParam());
        return stream.Steps();
    }

    LogCapture m_log;
};

TEST_P(JsonIpcFrameStream, DeliversAMessage) {
    EXPECT_THAT(StepsOf(Header(0, "\x02") + "ab"), ElementsAre("need 2", "message 0 ab, then 9"));
    EXPECT_THAT(m_log.Lines(), IsEmpty());
}

TEST_P(JsonIpcFrameStream, DeliversAHeaderOfLengthZeroAsAMessageWithoutPayload) {
    EXPECT_THAT(StepsOf(Header(0, "") + Header(0, "\x01") + "x"),
                ElementsAre("message 0 null, then 9", "need 1", "message 0 x, then 9"));
}

TEST_P(JsonIpcFrameStream, DeliversTwoMessagesBackToBack) {
    EXPECT_THAT(StepsOf(Header(0, "\x02") + "ab" + Header(0, "\x03") + "cde"),
                ElementsAre("need 2", "message 0 ab, then 9", "need 3", "message 0 cde, then 9"));
}

TEST_P(JsonIpcFrameStream, WaitsForTheRestOfAHeaderOrPayload) {
    EXPECT_THAT(StepsOf(Header(0, "\x02").substr(0, 8)), IsEmpty());
    EXPECT_THAT(StepsOf(Header(0, "\x02") + "a"), ElementsAre("need 2"));
}

TEST_P(JsonIpcFrameStream, AcceptsAPayloadOfTheMaximumLength) {
    const std::string payload(2048, 'x');
    EXPECT_THAT(StepsOf(Header(0, kLength2048) + payload),
                ElementsAre("need 2048", "message 0 " + payload + ", then 9"));
}

TEST_P(JsonIpcFrameStream, RefusesALongerPayload) {
    EXPECT_THAT(StepsOf(Header(0, kLength2049)), ElementsAre("refusal, then 0"));
    EXPECT_THAT(m_log.Lines(), ElementsAre("E Size of additional data (2049) exceeds maximum "
                                           "buffer length (2048)"));
}

TEST_P(JsonIpcFrameStream, RefusesALengthBeyondThirtyTwoBits) {
    EXPECT_THAT(StepsOf(Header(0, std::string("\x01\x00\x00\x00\x01", 5))),
                ElementsAre("refusal, then 0"));
    EXPECT_THAT(m_log.Lines(), ElementsAre("E Size of additional data (4294967297) exceeds maximum "
                                           "buffer length (2048)"));
}

TEST_P(JsonIpcFrameStream, RefusesTheHighestLength) {
    EXPECT_THAT(StepsOf(Header(0, std::string(8, '\xFF'))), ElementsAre("refusal, then 0"));
    EXPECT_THAT(m_log.Lines(), ElementsAre("E Size of additional data (18446744073709551615) "
                                           "exceeds maximum buffer length (2048)"));
}

TEST_P(JsonIpcFrameStream, RefusesAnotherId) {
    EXPECT_THAT(StepsOf(Header(1, "\x02")), ElementsAre("refusal, then 0"));
    EXPECT_THAT(m_log.Lines(),
                ElementsAre("E Received invalid message id 1, expected within range 0-0"));
}

TEST_P(JsonIpcFrameStream, RefusesTheHighestIdBeforeItLooksAtTheLength) {
    EXPECT_THAT(StepsOf(Header('\xFF', kLength2049)), ElementsAre("refusal, then 0"));
    EXPECT_THAT(m_log.Lines(),
                ElementsAre("E Received invalid message id 255, expected within range 0-0"));
}

TEST_P(JsonIpcFrameStream, TakesItsLimitFromItsOwner) {
    const std::string payload(2049, 'x');
    EXPECT_THAT(StepsOf(Header(0, kLength2049) + payload, 1U << 20),
                ElementsAre("need 2049", "message 0 " + payload + ", then 9"));
}

INSTANTIATE_TEST_SUITE_P(ByteByByte, JsonIpcFrameStream, ::testing::Values(1));
INSTANTIATE_TEST_SUITE_P(InSevens, JsonIpcFrameStream, ::testing::Values(7));
INSTANTIATE_TEST_SUITE_P(AtOnce, JsonIpcFrameStream, ::testing::Values(1U << 20));

/// Reads of another size than was asked for, which no socket should give.
class JsonIpcFrameReader : public ::testing::Test {
protected:
    JsonIpcFrameStep Process(const std::string& bytes) {
        return m_reader.ProcessReceivedData(bytes.data(), bytes.size());
    }

    void ExpectReadyForAHeader() {
        EXPECT_EQ(Process(Header(0, "\x05")).nextSize, 5U);
        EXPECT_EQ(Process("hello").outcome, JsonIpcFrameStep::Outcome::message);
    }

    LogCapture m_log;
    CJsonIpcFrameReader m_reader;
};

TEST_F(JsonIpcFrameReader, RefusesMoreBytesThanTheBufferHolds) {
    const JsonIpcFrameStep step = Process(std::string(2049, 'x'));
    EXPECT_EQ(step.outcome, JsonIpcFrameStep::Outcome::refusal);
    EXPECT_EQ(step.nextSize, 0U);
    EXPECT_THAT(m_log.Lines(),
                ElementsAre("E Length of received data (2049) exceeds maximum buffer length "
                            "(2048)"));
    ExpectReadyForAHeader();
}

TEST_F(JsonIpcFrameReader, RefusesAHeaderOfAnotherSize) {
    EXPECT_EQ(Process(std::string(8, '\0')).outcome, JsonIpcFrameStep::Outcome::refusal);
    EXPECT_EQ(Process(std::string(10, '\0')).outcome, JsonIpcFrameStep::Outcome::refusal);
    EXPECT_THAT(m_log.Lines(), ElementsAre("E Received data size is 8, expected 9",
                                           "E Received data size is 10, expected 9"));
}

TEST_F(JsonIpcFrameReader, RefusesAPayloadOfAnotherSizeAndForgetsItsHeader) {
    EXPECT_EQ(Process(Header(0, "\x05")).nextSize, 5U);
    EXPECT_EQ(Process("four").outcome, JsonIpcFrameStep::Outcome::refusal);
    EXPECT_THAT(m_log.Lines(), ElementsAre("E Received data size is 4, expected 5"));
    ExpectReadyForAHeader();
}

TEST_F(JsonIpcFrameReader, ForgetsAHalfReadMessageWhenARunIsTooLong) {
    EXPECT_EQ(Process(Header(0, "\x05")).nextSize, 5U);
    EXPECT_EQ(Process(std::string(2049, 'x')).outcome, JsonIpcFrameStep::Outcome::refusal);
    ExpectReadyForAHeader();
}

TEST_F(JsonIpcFrameReader, NamesTheFunctionThatAdministratorsKnow) {
    for (const std::string& refused :
         {std::string(2049, 'x'), std::string(8, '\0'), Header(1, ""), Header(0, kLength2049)}) {
        EXPECT_EQ(Process(refused).outcome, JsonIpcFrameStep::Outcome::refusal);
    }
    EXPECT_EQ(Process(Header(0, "\x05")).nextSize, 5U);
    EXPECT_EQ(Process("four").outcome, JsonIpcFrameStep::Outcome::refusal);
    EXPECT_EQ(m_log.Functions(), std::vector<std::string>(5, "processReceivedData"));
}

TEST_F(JsonIpcFrameReader, PointsIntoTheBytesGiven) {
    EXPECT_EQ(Process(Header(0, "\x02")).nextSize, 2U);
    const std::string payload = "ab";
    EXPECT_EQ(Process(payload).payload, payload.data());
}

}  // namespace
