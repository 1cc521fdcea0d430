#pragma once

#include <string_view>

// Plain printed lines, with no levels: what the program has to say goes to standard output.
void printLine(std::string_view line);

// A programmer's error: prints the message and stops the process.
[[noreturn]] void fatalError(std::string_view message);
