#pragma once

#include <functional>

/// Calls the function from the event loop when the system asks the program to terminate, by a
/// signal or by closing the console. Call once, after creating the application object.
void onShutdownRequest(std::function<void()> quit);
