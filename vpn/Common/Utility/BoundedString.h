#pragma once

#include <cstddef>

// Copying between texts and buffers of fixed size: what does not fit is cut, and a buffer that was
// written to always ends in a zero. Nothing is allocated. Any thread.

/// Number of characters of the text, counted up to the maximum; 0 for a null text.
std::size_t BoundedLength(const char* text, std::size_t maximum);

/// Copies the text into a buffer of the given size and gives BoundedLength(source, size): a value
/// equal to the size tells that the text was cut. The two may overlap. A null source gives 0 and
/// leaves the destination alone.
std::size_t BoundedCopy(char* destination, const char* source, std::size_t size);

/// Appends the text to the one in a buffer of the given size and gives the sum of both lengths: a
/// value of at least the size tells that the text was cut. Gives the size, and writes nothing,
/// when either is null or the destination has no terminating zero within its size.
std::size_t BoundedAppend(char* destination, const char* source, std::size_t size);
