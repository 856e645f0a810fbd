#pragma once

#include <string>

/// Replaces every numeric character reference, "&#65;" or "&#x41;", by the character whose code is
/// the number's low 8 bits. A text in which one of them holds anything but digits stays unchanged
/// altogether. Any thread.
void DecodeCharacterReferences(std::string& text);
