#pragma once

#include <functional>

// Runs the benchmarks of a program that needs widgets: inside a QApplication
// named as the program, with tearDown run while that still exists (windows
// must go before it).
int runGuiBenchmarks(int argc, char** argv, const std::function<void()>& tearDown = {});
