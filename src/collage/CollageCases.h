#pragma once

#include <span>

// Cases of a catalogue enumeration in declaration order, e.g. allCases<CollageLayoutOption>(). Each
// enumeration declares its specialization beside itself.
template <typename Enum> std::span<const Enum> allCases();
