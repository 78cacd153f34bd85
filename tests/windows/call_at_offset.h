// Calls a function with a stack that is aligned to four bytes only, as hosts on 32-bit Windows do.
#ifndef TESTS_WINDOWS_CALL_AT_OFFSET_H_
#define TESTS_WINDOWS_CALL_AT_OFFSET_H_

#include <cstdint>
#include <vector>

// Copies the argument words onto a stack with esp mod 16 == offset, past anything a compiler would
// align on the way, and calls the function there; `self` is the object of a method. The result is edx
// and eax.
inline uint64_t CallAtOffset(uint32_t offset, const void* function, std::vector<uint32_t> words,
                             void* self = nullptr) {
  uint32_t low = reinterpret_cast<uint32_t>(function);
  uint32_t high = 256 + ((16 - offset) & 15);
  uint32_t count = words.size();
  // Behind the words, where esi will point.
  words.push_back(reinterpret_cast<uint32_t>(self));
  const uint32_t* from = words.data();
  asm volatile(
      "movl %%esp, %%ebx\n\t"
      "andl $-16, %%esp\n\t"
      "subl %%edx, %%esp\n\t"
      "movl %%esp, %%edi\n\t"
      "rep movsl\n\t"
      "movl (%%esi), %%ecx\n\t"
      "call *%%eax\n\t"
      "movl %%ebx, %%esp"
      : "+a"(low), "+c"(count), "+d"(high), "+S"(from)
      :
      : "ebx", "edi", "memory", "cc", "xmm0", "xmm1", "xmm2", "xmm3", "xmm4", "xmm5", "xmm6",
        "xmm7");
  return uint64_t{high} << 32 | low;
}

#endif  // TESTS_WINDOWS_CALL_AT_OFFSET_H_
