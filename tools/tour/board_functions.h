#pragma once

namespace busquill {

class Program;
class Tour;

// The windows of the board's functions other than captures.

/// A measurement of some seconds.
void Measure(Tour& tour, Program& program);
/// A read of some memory by the master, and the target.
void Exercise(Tour& tour, Program& program);
/// A stimulus program that drives one pattern after each of two events.
void Stimulate(Tour& tour, Program& program);
/// A device of the bus and its header.
void ShowConfiguration(Tour& tour, Program& program);
/// Some tests of a device, up to the first one with instructions.
void TestDevice(Tour& tour, Program& program);
/// A run of one of the two windows with a fixed check list, until there are some results.
void RunChecks(Tour& tour, Program& program, const char* entry, const char* picture, int results);

} // namespace busquill
