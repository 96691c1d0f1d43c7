// Every block carries its size in front of it, so that all of it can be overwritten.

#include "secblobenc/WipedMemory.h"

#include <openssl/crypto.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

constexpr std::size_t kHead = alignof(std::max_align_t) > sizeof(std::size_t)
                                  ? alignof(std::max_align_t)
                                  : sizeof(std::size_t);
constexpr std::size_t kStackDepth = 256 * 1024;

void* Allocate(std::size_t size) {
  auto* block = size <= static_cast<std::size_t>(-1) - kHead
                    ? static_cast<unsigned char*>(std::malloc(kHead + size))
                    : nullptr;
  if (block == nullptr) return nullptr;
  std::memcpy(block, &size, sizeof size);
  return block + kHead;
}

std::size_t SizeOf(const void* memory) {
  std::size_t size = 0;
  std::memcpy(&size, static_cast<const unsigned char*>(memory) - kHead, sizeof size);
  return size;
}

void Free(void* memory) {
  if (memory == nullptr) return;
  OPENSSL_cleanse(memory, SizeOf(memory));
  std::free(static_cast<unsigned char*>(memory) - kHead);
}

void* LibraryAllocate(std::size_t size, const char*, int) {
  return Allocate(size);
}

void LibraryFree(void* memory, const char*, int) {
  Free(memory);
}

void* LibraryReallocate(void* memory, std::size_t size, const char*, int) {
  if (size == 0) {
    Free(memory);
    return nullptr;
  }
  void* larger = Allocate(size);
  if (larger == nullptr || memory == nullptr) return larger;
  std::memcpy(larger, memory, std::min(size, SizeOf(memory)));
  Free(memory);
  return larger;
}

}  // namespace

void* operator new(std::size_t size) {
  void* memory = Allocate(size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return Allocate(size);
}

void operator delete(void* memory, const std::nothrow_t&) noexcept {
  Free(memory);
}

void operator delete(void* memory) noexcept {
  Free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
  Free(memory);
}

void WipeLibraryMemory() {
  CRYPTO_set_mem_functions(LibraryAllocate, LibraryReallocate, LibraryFree);
}

// Copying leaves the last bytes copied in the processor's vector registers, which the loader of
// libraries may put on the stack later. Copies of every size class replace them.
void WipeStack() {
  unsigned char depth[kStackDepth];
  OPENSSL_cleanse(depth, sizeof depth);
  void* (*const volatile copy)(void*, const void*, std::size_t) = std::memcpy;
  for (std::size_t size = 4; size < kStackDepth / 2; size += size / 4) {
    copy(depth, depth + kStackDepth / 2, size);
  }
  OPENSSL_cleanse(depth, sizeof depth);
}
