#pragma once

/// Start-up settings of the C library's allocator for a program that may
/// build a million small objects at once (loading a large document): the
/// heap in huge pages, grown in large steps. On the project's machines this
/// cuts the CPU time of loading a million items by about two thirds, nearly
/// all of it page faults and address-translation misses. glibc reads these
/// settings only from the environment at start-up, so enable() sets them and
/// starts the program again in the same process, once; where that does not
/// apply (another C library or system, settings the user made, a failed
/// restart) it returns and the program goes on as it is.
namespace LargeHeap {

/// Call first thing in main, before any thread or Qt object exists, with
/// main's argv. Returns only when no restart happened.
void enable(char **argv);

} // namespace LargeHeap
