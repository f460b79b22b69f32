// SPDX-License-Identifier: Apache-2.0
//
// The limits and buffers that a build with TARNWICK_TINY shrinks, so that their boundaries occur in small tests. All of
// them stand here: what they bound is told where they are used.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarn::limits {

#ifdef TARNWICK_TINY
inline constexpr bool Tiny = true;
#else
inline constexpr bool Tiny = false;
#endif

template <class Number>
constexpr Number pick(Number usual, Number tiny) {
    return Tiny ? tiny : usual;
}

// clang-format off
//                                                             usual                       tiny
// files: bytes gathered ahead of a write; milliseconds that one waits for a device
inline constexpr std::size_t SaveStreamBytes     = pick<std::size_t>(std::size_t{1} << 20,       64);
inline constexpr int LongestWait                 = pick(10000,                                   1000);
// the heap: bytes of its range
inline constexpr std::uint64_t LargestReserve    = pick(std::uint64_t{4} << 30,                  std::uint64_t{64} << 20);
// rows of lists: bytes read or written at a time
inline constexpr std::size_t RowBlockBytes       = pick<std::size_t>(std::size_t{64} * 1024,     64);
// index files: bytes read around a node, at the front of a file, and looked at without copying; bytes of records that
// are kept of a file that is held open, and of one that is not; nodes in memory; bytes of keys that are sorted at once,
// and of nodes that are built at once
inline constexpr std::int32_t AroundNodeBytes    = pick(2048,                                    48);
inline constexpr std::int32_t FrontOfIndexBytes  = pick(4096,                                    1300);
inline constexpr std::int32_t MostPeekBytes      = pick(2048,                                    64);
inline constexpr std::size_t HeldIndexBytes      = pick<std::size_t>(std::size_t{2} << 20,       400);
inline constexpr std::size_t RememberedIndexBytes = pick<std::size_t>(std::size_t{1} << 19,       400);
inline constexpr std::size_t MostIndexNodes      = pick<std::size_t>(512,                        8);
inline constexpr std::size_t KeySortBytes        = pick<std::size_t>(std::size_t{32} << 20,      256);
inline constexpr std::size_t BuiltStretchBytes   = pick<std::size_t>(std::size_t{64} << 10,      100);
// tables: rows whose keys are inserted one by one instead of sorted; rows that are gathered, and their bytes
inline constexpr std::int32_t LeastSorted        = pick(1000,                                    5);
inline constexpr std::int32_t LeastGathered      = pick(100,                                     5);
inline constexpr std::int32_t MostGathered       = pick(16000,                                   5);
inline constexpr std::int32_t GatheredBytes      = pick(4 << 20,                                 1);
// data files: bytes read at a time (of delimited text, in a tiny build behind its longest row); handed on at a time; read
// by the scanner
inline constexpr std::ptrdiff_t TabBlockBytes    = pick<std::ptrdiff_t>(256 * 1024,              64);
inline constexpr std::int64_t XbaseBlockBytes    = pick<std::int64_t>(256 * 1024,                64);
inline constexpr std::size_t FilePieceBytes      = pick<std::size_t>(std::size_t{256} * 1024,    16);
inline constexpr std::size_t ScannerReadBytes    = pick<std::size_t>(65536,                      7);
// class texts: lines
inline constexpr std::size_t MaxClassLines       = pick<std::size_t>(8000,                       80);
// clang-format on

}  // namespace tarn::limits
