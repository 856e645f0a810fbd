#include "JsonIpcSendQueue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/asio/error.hpp>

namespace {

using boost::system::error_code;
using testing::ElementsAre;

const error_code kNoError;
const error_code kAborted = boost::asio::error::operation_aborted;
const error_code kReset = boost::asio::error::connection_reset;

/// A frame of eleven bytes.
CJsonIpcSendQueue::Send Message(std::uint32_t messageId = 0) {
    return std::make_shared<CJsonIpcSend>(messageId, "{}");
}

class JsonIpcSendQueue : public testing::Test {
protected:
    /// Adds a message whose write starts at once.
    CJsonIpcSendQueue::Send StartMessage() {
        auto message = Message();
        m_queue.Add(message);
        EXPECT_EQ(m_queue.Start(), message);
        return message;
    }

    CJsonIpcSendQueue m_queue;
};

}  // namespace

TEST_F(JsonIpcSendQueue, WritesTheFrameOfAMessage) {
    const auto message = Message(5);
    EXPECT_EQ(message->MessageId(), 5U);
    EXPECT_EQ(std::string(message->Frame().begin(), message->Frame().end()),
              std::string("\5\2\0\0\0\0\0\0\0{}", 11));
}

TEST_F(JsonIpcSendQueue, HasNothingToWriteAtFirst) {
    EXPECT_EQ(m_queue.Start(), nullptr);
    EXPECT_FALSE(m_queue.IsWriting());
}

TEST_F(JsonIpcSendQueue, WritesOneMessageAfterTheOther) {
    const auto first = Message();
    const auto second = Message();
    m_queue.Add(first);
    m_queue.Add(second);
    EXPECT_EQ(m_queue.Start(), first);
    EXPECT_TRUE(m_queue.IsWriting());
    EXPECT_EQ(m_queue.Start(), nullptr);
    EXPECT_EQ(m_queue.OnWritten(first, 11, kNoError), kNoError);
    EXPECT_FALSE(m_queue.IsWriting());
    EXPECT_EQ(m_queue.Start(), second);
}

TEST_F(JsonIpcSendQueue, WritesTheRestOfAFrameByteByByte) {
    const auto message = StartMessage();
    for (std::size_t written = 0; written <= 11; ++written) {
        EXPECT_EQ(message->BytesLeft(written), 11 - written);
    }
}

TEST_F(JsonIpcSendQueue, WritesNoFurtherByteOnceCancelled) {
    const auto message = StartMessage();
    EXPECT_THAT(m_queue.Cancel(), ElementsAre());
    for (std::size_t written = 0; written <= 11; ++written) {
        EXPECT_EQ(message->BytesLeft(written), 0U);
    }
}

TEST_F(JsonIpcSendQueue, CountsAMessageThatWasWrittenBeforeItWasCancelled) {
    const auto message = StartMessage();
    EXPECT_THAT(m_queue.Cancel(), ElementsAre());
    EXPECT_EQ(m_queue.OnWritten(message, 11, kNoError), kNoError);
    EXPECT_FALSE(m_queue.IsCut());
}

TEST_F(JsonIpcSendQueue, AbortsAMessageThatWasStoppedAtAnyByte) {
    for (std::size_t written = 0; written < 11; ++written) {
        CJsonIpcSendQueue queue;
        const auto message = Message();
        queue.Add(message);
        EXPECT_EQ(queue.Start(), message);
        EXPECT_THAT(queue.Cancel(), ElementsAre());
        EXPECT_EQ(queue.OnWritten(message, written, kNoError), kAborted);
        // Without a byte of it on the way the next message is whole.
        EXPECT_EQ(queue.IsCut(), written != 0);
    }
}

TEST_F(JsonIpcSendQueue, TellsTheErrorOfTheWriteAtAnyByte) {
    for (std::size_t written = 0; written <= 11; ++written) {
        CJsonIpcSendQueue queue;
        const auto message = Message();
        queue.Add(message);
        EXPECT_EQ(queue.Start(), message);
        EXPECT_EQ(queue.OnWritten(message, written, kReset), kReset);
        EXPECT_EQ(queue.IsCut(), written != 0 && written != 11);
    }
}

TEST_F(JsonIpcSendQueue, AbortsALateMessageHoweverMuchWasWritten) {
    for (const std::size_t written : {0U, 5U, 11U}) {
        CJsonIpcSendQueue queue;
        const auto message = Message();
        queue.Add(message);
        EXPECT_EQ(queue.Start(), message);
        EXPECT_TRUE(CJsonIpcSendQueue::OnTimeout(*message));
        EXPECT_EQ(message->BytesLeft(written), 0U);
        EXPECT_THAT(queue.Cancel(), ElementsAre());
        EXPECT_EQ(queue.OnWritten(message, written, kNoError), kAborted);
    }
}

TEST_F(JsonIpcSendQueue, CallsAMessageLateThatWasCancelledAndHangs) {
    const auto message = StartMessage();
    EXPECT_THAT(m_queue.Cancel(), ElementsAre());
    EXPECT_TRUE(CJsonIpcSendQueue::OnTimeout(*message));
}

TEST_F(JsonIpcSendQueue, CallsNoMessageLateWhoseWriteHasEnded) {
    const auto message = StartMessage();
    EXPECT_EQ(m_queue.OnWritten(message, 11, kNoError), kNoError);
    EXPECT_FALSE(CJsonIpcSendQueue::OnTimeout(*message));
}

TEST_F(JsonIpcSendQueue, GivesTheMessagesThatWaitWhenCancelled) {
    const auto first = StartMessage();
    const auto second = Message();
    const auto third = Message();
    m_queue.Add(second);
    m_queue.Add(third);
    EXPECT_THAT(m_queue.Cancel(), ElementsAre(second, third));
    EXPECT_THAT(m_queue.Cancel(), ElementsAre());
    // They fail while the first is still being written.
    EXPECT_EQ(m_queue.OnWritten(second, 0, kAborted), kAborted);
    EXPECT_TRUE(m_queue.IsWriting());
    EXPECT_EQ(m_queue.OnWritten(first, 11, kNoError), kNoError);
    EXPECT_EQ(m_queue.Start(), nullptr);
}

TEST_F(JsonIpcSendQueue, StaysCutBehindACutFrame) {
    const auto first = StartMessage();
    EXPECT_EQ(m_queue.OnWritten(first, 3, kReset), kReset);
    const auto second = StartMessage();
    EXPECT_TRUE(m_queue.IsCut());
    EXPECT_EQ(m_queue.OnWritten(second, 0, kReset), kReset);
    EXPECT_TRUE(m_queue.IsCut());
}
