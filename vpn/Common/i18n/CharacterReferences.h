#pragma once

#include <string>

/// Replaces every numeric character reference, such as "&#65;" or "&#x41;", by the character whose
/// code is the low 8 bits of the number. If one reference in the text is not a number, the whole
/// text stays unchanged. Any thread.
void DecodeCharacterReferences(std::string& text);
