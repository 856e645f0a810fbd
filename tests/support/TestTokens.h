#pragma once

#include <initializer_list>
#include <memory>
#include <string>

#include "TemporaryFolder.h"

/// The authority that signed the certificates on the smart cards.
inline std::string PeoplesAuthority() {
    return TK_TEST_TOKEN_FILES "/people.pem";
}

/// The folder with p11-kit's description of the module, to cover /usr/share/p11-kit/modules with.
inline std::string TokenModules() {
    return TK_TEST_TOKEN_MODULES;
}

/// A card reader for this process and its children. make-tokens.sh makes the cards; their PIN is
/// 1234, and the third wrong one locks a card. One object in a process, made before anything looks
/// for cards. For one thread.
class TestTokens {
public:
    TestTokens();
    ~TestTokens();
    TestTokens(const TestTokens&) = delete;
    TestTokens& operator=(const TestTokens&) = delete;

    /// From now on these cards, and no others, are in the reader.
    void Insert(std::initializer_list<std::string> cards) const;
    /// So many PINs of the card were wrong before.
    void SetWrongPins(const std::string& card, int count) const;

    /// A call that the module does not answer as long as this lives: "reading" for the list of the
    /// cards, "signing" for a signature.
    class Block {
    public:
        Block(const TestTokens& tokens, const std::string& call);
        ~Block();
        Block(const Block&) = delete;
        Block& operator=(const Block&) = delete;

        /// Whether the call waits by now.
        [[nodiscard]] bool IsReached();

    private:
        std::string m_pipe;
        int m_writing = -1;
    };

private:
    TemporaryFolder m_folder;
};
