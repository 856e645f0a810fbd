#pragma once

#include <cstddef>

// Copies texts into buffers of fixed size. What does not fit is cut, and a buffer that was written
// to always ends with a zero. Nothing is allocated. Any thread.

/// Returns the length of the text, but at most the maximum; 0 for a null text.
std::size_t BoundedLength(const char* text, std::size_t maximum);

/// Copies the text into a buffer of the given size and returns BoundedLength(source, size). A
/// result equal to the size means that the text was cut. The two may overlap. With a null source it
/// returns 0 and leaves the destination unchanged.
std::size_t BoundedCopy(char* destination, const char* source, std::size_t size);

/// Appends the text to the one in a buffer of the given size and returns the sum of both lengths. A
/// result of at least the size means that the text was cut. If either is null, or if the
/// destination has no terminating zero within its size, it writes nothing and returns the size.
std::size_t BoundedAppend(char* destination, const char* source, std::size_t size);
