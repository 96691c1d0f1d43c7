// The operating-system version as old system services report it: 0x10F6 is 10.15.6.

#pragma once

#include <cstddef>
#include <cstdint>

inline constexpr std::uint32_t kSystemVersion = 0x73797376;        // 'sysv': the whole value
inline constexpr std::uint32_t kSystemVersionMajor = 0x73797331;   // 'sys1'
inline constexpr std::uint32_t kSystemVersionMinor = 0x73797332;   // 'sys2'
inline constexpr std::uint32_t kSystemVersionBugFix = 0x73797333;  // 'sys3'

// Writes the part of the system version that `selector` asks for to `*out` and returns 0. An
// unknown selector is reported on standard error, leaves `*out` alone and returns -1.
std::int16_t Gestalt_ALT(std::uint32_t selector, std::int32_t* out);

// The version value for a Darwin kernel release text such as "19.6.0". Darwin M is system minor
// version M - 4, modulo 16: releases from 20 on wrap round and count as old.
std::int32_t SystemVersionFromKernelRelease(const char* release);

// Fills `release` (`size` bytes) with the release of the Darwin kernel whose behaviour this system
// offers. False when it cannot be had. One file per platform.
bool ReadKernelRelease(char* release, std::size_t size);
