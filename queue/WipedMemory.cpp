// The program's own memory for objects: it is wiped when it goes, for a password may have been in
// it.

#include <openssl/crypto.h>

#include <cstdlib>
#include <new>

void* operator new(std::size_t size) {
  if (void* block = std::malloc(size != 0 ? size : 1)) return block;
  throw std::bad_alloc();
}

void operator delete(void* block) noexcept {
  std::free(block);
}

void operator delete(void* block, std::size_t size) noexcept {
  if (block != nullptr) OPENSSL_cleanse(block, size);
  std::free(block);
}
