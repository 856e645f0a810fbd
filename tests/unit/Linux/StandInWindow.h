#pragma once

#include <functional>

/// What happens while a stand-in window is being made, which takes a real one its time. It is
/// called on the main thread.
void WhileWindowIsMade(std::function<void()> event);
