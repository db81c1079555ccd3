#pragma once

#include <functional>

/// Ends the program properly when the system asks it to: from now on, a request to terminate (a
/// signal, or the closing of the console) calls the function from the event loop. To be called
/// once, when the application object exists.
void onShutdownRequest(std::function<void()> quit);
