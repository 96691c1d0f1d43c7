// The sending computer's name and address, as the accounting lines carry them.

#pragma once

#include <netdb.h>

// Fills `dst` (97 bytes) with the host name, at most 96 bytes; UTF-8 printers take 32 characters of
// it. Empty when the name cannot be had.
void getHostName(char* dst);

// Fills `hostDst` (97 bytes) with the host name and `addrDst` (46 bytes) with the encoded address
// that the name resolves to: "I" and eight digits for IPv4, "6" and the digits of the expanded text
// for IPv6, empty without an address. The job itself does not call it: resolving may block.
void GetClientIPAddress(char* hostDst, char* addrDst);

// Resolves a NUL-terminated name to one numeric address in `out` (`outLen` bytes, cleared first).
// False when an argument is missing, `outLen` is negative or no address was obtained. A name that
// is not ASCII ends the process.
bool getHostAddress(const char* name, char* out, int outLen);

// Encodes a numeric address into `encoded` (46 bytes); empty when it is neither form.
void EncodeHostAddress(const char* address, char* encoded);

// The one resolution that can be under way: where its address goes (`outStringLen` bytes, null
// while there is none), and whether the last address examined could be read.
extern char* outString;
extern int outStringLen;
extern bool result;

// The resolver's answer for one name.
struct HostResolution {
  const char* name;
  addrinfo* addresses;  // in the resolver's order
};

// What the answer is about, for the callback.
enum class HostInfoType { kAddresses, kNames };

// Resolves `name` and hands the answer to MyCFHostClientCallBack. Returns 1 when the resolution was
// started, else 0. A null name ends the process.
int MyResolveNameToAddress(const char* name);

// Takes the answer: picks an address when there is one (`error` 0), and releases it.
void MyCFHostClientCallBack(HostResolution* host, HostInfoType typeInfo, int error,
                            const char* info);

// Picks the address that getHostAddress returns: the first IPv4 address that is not 127.0.0.1,
// otherwise the last IPv6 address that is not fe80::1. Null arguments end the process.
void MyPrintAddressArray(const addrinfo* addresses, const char* hostName);

// Releases the resolver's answer. A null host ends the process.
void MyCFHostCleanup(HostResolution* host);
