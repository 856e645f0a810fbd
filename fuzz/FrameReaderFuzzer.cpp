// The agent's bytes, as the transport reads them from its stream.
//
// Input: a byte that chooses the longest payload, a byte that chooses how the rest is split, and
// the bytes of the stream.

#include <algorithm>
#include <string>
#include <vector>

#include "Check.h"
#include "FuzzInput.h"
#include "FuzzTarget.h"
#include "JsonIpcFrameReader.h"
#include "LogCapture.h"

namespace {

using Outcome = JsonIpcFrameStep::Outcome;

constexpr int kRunsTried = 32;

struct Received {
    std::vector<std::string> messages;
    bool isRefused = false;
    std::size_t unused = 0;  ///< bytes after the last one that was taken

    bool operator==(const Received& other) const {
        return messages == other.messages && isRefused == other.isRefused && unused == other.unused;
    }
};

/// Replaces the socket: collects what arrives until there is as much as was asked for.
class Stream {
public:
    explicit Stream(std::size_t maximum) : m_reader(maximum), m_maximum(maximum) {}

    void Arrive(std::string_view bytes) {
        m_arrived += bytes;
        while (m_nextSize != 0 && m_arrived.size() >= m_nextSize) {
            TakeOneRead();
        }
    }

    Received Result() {
        m_received.unused = m_arrived.size();
        return m_received;
    }

private:
    void TakeOneRead() {
        const ExactBytes read(std::string_view(m_arrived).substr(0, m_nextSize));
        const JsonIpcFrameStep step =
            m_reader.ProcessReceivedData(read.View().data(), read.View().size());
        if (step.outcome == Outcome::message) {
            TK_CHECK(step.messageId == kBrowserResultMessageId);
            TK_CHECK(step.nextSize == kFrameHeaderSize);
            m_received.messages.emplace_back(step.length != 0 ? step.payload : "", step.length);
        }
        TK_CHECK(step.outcome != Outcome::need || step.nextSize - 1 < m_maximum);
        TK_CHECK((step.outcome == Outcome::refusal) == (step.nextSize == 0));
        m_received.isRefused = step.outcome == Outcome::refusal;
        if (!m_received.isRefused) {
            m_arrived.erase(0, m_nextSize);
        }
        m_nextSize = step.nextSize;
    }

    CJsonIpcFrameReader m_reader;
    std::size_t m_maximum;
    std::string m_arrived;
    std::size_t m_nextSize = kFrameHeaderSize;
    Received m_received;
};

std::uint64_t LengthIn(std::string_view header) {
    std::uint64_t length = 0;
    for (std::size_t index = kFrameHeaderSize; index > 1; --index) {
        length = length << 8 | static_cast<std::uint8_t>(header[index - 1]);
    }
    return length;
}

/// A second implementation, which has the whole stream at hand.
Received Expected(std::string_view bytes, std::size_t maximum) {
    Received received;
    while (bytes.size() >= kFrameHeaderSize) {
        const std::uint64_t length = LengthIn(bytes);
        if (bytes[0] != 0 || length > maximum) {
            received.isRefused = true;
            break;
        }
        if (bytes.size() - kFrameHeaderSize < length) {
            // Its header has been taken; the payload has not.
            bytes.remove_prefix(kFrameHeaderSize);
            break;
        }
        received.messages.emplace_back(bytes.substr(kFrameHeaderSize, length));
        bytes.remove_prefix(kFrameHeaderSize + length);
    }
    received.unused = bytes.size();
    return received;
}

/// Reads the stream in pieces of sizes from 1 up to one that the seed leads to.
Received ReadSplit(std::string_view bytes, std::size_t maximum, unsigned longestPiece) {
    Stream stream(maximum);
    unsigned state = longestPiece;
    while (!bytes.empty()) {
        state = state * 1103515245U + 12345U;
        const std::size_t piece =
            std::min<std::size_t>(state / 65536 % longestPiece + 1, bytes.size());
        stream.Arrive(bytes.substr(0, piece));
        bytes.remove_prefix(piece);
    }
    return stream.Result();
}

/// Passes runs of a size that was not asked for. Each is judged by its own bytes, and refused once.
void HandOverAnyRuns(std::string_view bytes, std::size_t maximum) {
    LogCapture log;
    CJsonIpcFrameReader reader(maximum);
    std::size_t wanted = kFrameHeaderSize;
    for (int runs = 0; runs < kRunsTried && bytes.size() > 1; ++runs) {
        const std::size_t size =
            std::min<std::size_t>(static_cast<std::uint8_t>(bytes[0]) % 20, bytes.size() - 1);
        const ExactBytes run(bytes.substr(1, size));
        bytes.remove_prefix(1 + size);
        const JsonIpcFrameStep step = reader.ProcessReceivedData(run.View().data(), size);
        const bool isRefused = step.outcome == Outcome::refusal;
        TK_CHECK(isRefused || size == wanted);
        TK_CHECK(log.Records().size() == (isRefused ? 1 : 0));
        log.Clear();
        TK_CHECK(step.payload == nullptr || step.payload == run.View().data());
        TK_CHECK(step.length == (step.payload != nullptr ? size : 0));
        wanted = isRefused ? kFrameHeaderSize : step.nextSize;
    }
}

void EncodeAndRead(const std::string& payload, std::size_t maximum) {
    const std::vector<char> frame = EncodeFrame(kBrowserResultMessageId, payload);
    Stream stream(maximum);
    stream.Arrive({frame.data(), frame.size()});
    const Received received = stream.Result();
    if (payload.size() > maximum) {
        TK_CHECK(received.isRefused && received.messages.empty());
    } else {
        TK_CHECK(received == (Received{{payload}, false, 0}));
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    const std::uint8_t choice = input.TakeByte();
    const std::size_t maximum = choice == 0 ? kMaximumPayloadLength : kFrameHeaderSize + choice;
    const unsigned longestPiece = input.TakeByte() + 1U;
    const std::string stream = input.TakeRest();

    const Received expected = Expected(stream, maximum);
    Stream unsplit(maximum);
    unsplit.Arrive(stream);
    TK_CHECK(unsplit.Result() == expected);
    TK_CHECK(ReadSplit(stream, maximum, 1) == expected);
    TK_CHECK(ReadSplit(stream, maximum, longestPiece) == expected);
    HandOverAnyRuns(stream, maximum);
    EncodeAndRead(stream, maximum);
    return 0;
}
