// The 24 stored kernels of FiltroMask.
#ifndef FILTERS_KERNEL_TABLE_H_
#define FILTERS_KERNEL_TABLE_H_

#include <iterator>

namespace pincel {

struct StoredKernel {
  int number, side, divisor, bias;
  int weights[25];  // side x side of them, row by row
};

constexpr int kKernels = 24;

// clang-format off
constexpr StoredKernel kKernelTable[] = {
    {0, 3, 1, 50, {-5,  -5, -5,
                   -5, -39, -5,
                   -5,  -5, -5}},
    {1, 3, 1, 128, {-1, -1, 0,
                     1,  0, 1,
                     0,  1, 1}},
    {2, 5, 1, 128, {-1, 0, 0, 0, 0,
                     0, 0, 0, 0, 0,
                     0, 0, 0, 0, 0,
                     0, 0, 0, 0, 0,
                     0, 0, 0, 0, 2}},
    {3, 3, 1, 0, {-4, -4, -4,
                  -4, 20,  0,
                  -4,  0,  0}},
    {4, 5, 1, 0, {-4, -3, -2, -1, 0,
                  -3,  0,  0,  0, 1,
                  -2,  0,  0,  0, 2,
                  -1,  0,  0,  0, 3,
                   0,  1,  2,  3, 4}},
    {5, 5, 1, 90, {-1, -1, -1, -1, 0,
                   -1, -1, -1,  0, 1,
                   -1, -1,  0,  1, 1,
                   -1,  0,  1,  1, 1,
                    0,  1,  1,  1, 1}},
    {6, 5, 1, 0, {-11,  -9, -13, -8,  0,
                  -12, -11, -10,  0, 11,
                  -10,  -9,   1,  9, 10,
                   -9,   0,  11, 10, 11,
                    0,  11,  10,  9, 10}},
    {7, 5, 1, 0, {1, 1,   1, 1, 1,
                  1, 0,   0, 0, 1,
                  1, 0, -23, 0, 1,
                  1, 0,   0, 0, 1,
                  1, 1,   1, 1, 1}},
    {8, 5, 8, 0, {-1, -1, -1, -1, -1,
                  -1,  2,  2,  2, -1,
                  -1,  2,  8,  2, -1,
                  -1,  2,  2,  2, -1,
                  -1, -1, -1, -1, -1}},
    {9, 3, 1, 0, {-1, -1, -1,
                  -1,  9, -1,
                  -1, -1, -1}},
    {10, 3, 1, 0, {-1, -2, -1,
                   -2, 13, -2,
                   -1, -2, -1}},
    {11, 5, 7, 0, { 0, 0, -1, 0,  0,
                    0, 0,  3, 0,  0,
                   -1, 3,  0, 3, -1,
                    0, 0,  3, 0,  0,
                    0, 0, -1, 0,  0}},
    {12, 5, 1, 0, {1,  1,   1,  1, 1,
                   1, -3,  -3, -3, 1,
                   1, -3, -10, -3, 1,
                   1, -3,  -3, -3, 1,
                   1,  1,   1,  1, 1}},
    {13, 5, 3, 0, {1, 1, 1, 1, 1,
                   1, 2, 2, 2, 1,
                   1, 2, 3, 2, 1,
                   1, 2, 2, 2, 1,
                   1, 1, 1, 1, 1}},
    {14, 5, 4, 0, {0, 0, -1, -2, 0,
                   2, 1,  0,  0, 0,
                   0, 0,  0,  0, 0,
                   0, 0,  0, -1, 2,
                   0, 2,  1,  0, 0}},
    {15, 3, 1, 0, {1, 0, 0,
                   0, 0, 0,
                   0, 0, 0}},
    {16, 3, 3, 0, { 0, -2, 0,
                   -2,  0, 2,
                    0,  2, 0}},
    {17, 5, 1, 0, { 0,  0,  1,  2, 1,
                    0,  0,  0,  1, 0,
                    2,  0,  0, -2, 0,
                    0, -1,  0,  0, 0,
                   -1, -2, -1,  0, 0}},
    {18, 1, 1, 140, {1}},
    {19, 5, 1, 0, {0, 1,   2, 1, 0,
                   1, 2,   3, 2, 1,
                   2, 3, -35, 3, 2,
                   1, 2,   3, 2, 1,
                   0, 1,   2, 1, 0}},
    {20, 5, 1, 0, {-2, -2, -2, -2, -2,
                   -2, -3, -3, -3, -2,
                   -2, -3, 53, -3, -2,
                   -2, -3, -3, -3, -2,
                   -2, -2, -2, -2, -2}},
    {21, 5, 1, 0, {-5, -2, 0, 0, 0,
                   -2,  0, 0, 0, 0,
                    0,  0, 0, 0, 0,
                    0,  0, 0, 0, 2,
                    0,  0, 0, 2, 6}},
    {22, 3, 3, 3, {1,  1, 1,
                   1, -7, 1,
                   1,  1, 1}},
    {23, 1, 0, 0, {0}},  // its divisor makes every call fail. Intended.
};
// clang-format on

static_assert(std::size(kKernelTable) == kKernels);
static_assert([] {
  for (int i = 0; i < kKernels; ++i) {
    const StoredKernel& kernel = kKernelTable[i];
    if (kernel.number != i) return false;
    if (kernel.side != 1 && kernel.side != 3 && kernel.side != 5) return false;
    for (int w = kernel.side * kernel.side; w < 25; ++w) {
      if (kernel.weights[w] != 0) return false;
    }
  }
  return true;
}());

// The sums of the weights, as a check of the digits.
static_assert([] {
  constexpr int kSums[kKernels] = {-79, 2,  1, 0, 0, 0, 1, -7, 8,  1, 1, 8,
                                   -18, 35, 4, 1, 0, 0, 1, 1,  -3, 1, 1, 0};
  for (int i = 0; i < kKernels; ++i) {
    int sum = 0;
    for (int weight : kKernelTable[i].weights) sum += weight;
    if (sum != kSums[i]) return false;
  }
  return true;
}());

}  // namespace pincel

#endif  // FILTERS_KERNEL_TABLE_H_
