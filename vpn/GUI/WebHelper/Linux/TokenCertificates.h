#pragma once

#include <ctime>
#include <vector>

#include "TokenCertificate.h"

/// The certificates on the machine's tokens with which a person can sign in now: those that are
/// valid, are meant for clients or for anything, are no authority's, and have a key. A token that
/// hides its keys until it is given the PIN counts as having them. A token that has locked its PIN
/// has nothing to offer. Asks for no PIN. Blocks as long as the tokens take, which can be seconds.
/// Any thread.
[[nodiscard]] std::vector<TokenCertificate> ReadTokenCertificates(std::time_t now);
