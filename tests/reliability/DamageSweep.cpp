// Every simple damage of small files: a program FILE... hands what it is linked with (the entry
// point of a fuzz target) each file, all that it can be cut to, and it with each bit turned. Ends
// with 1 when one of these took long or much memory; prints what it counted as JSON.

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <vector>

#include "tests/support/AllocationWatch.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using CBytes = std::vector<std::uint8_t>;

// Buffers have their lengths whatever the file's; nothing else may be larger than these few bytes.
constexpr std::size_t kGreatestAllocation = std::size_t{1} << 20;
constexpr double kGreatestSeconds = 1;

CBytes gInput;

/// A target that finds fault aborts: leaves what it was given in a file.
void KeepInput(int) {
  std::ofstream file("found", std::ios::binary);
  file.write(reinterpret_cast<const char*>(gInput.data()),
             static_cast<std::streamsize>(gInput.size()));
}

struct CCounts {
  std::size_t fInputs = 0, fAllocation = 0;
  double fSeconds = 0;
};

void Try(const CBytes& bytes, CCounts& counts) {
  gInput = CBytes(bytes);  // of its exact length: a byte behind it is not the file's
  NSTest::ResetLargestAllocation();
  const auto begun = std::chrono::steady_clock::now();
  LLVMFuzzerTestOneInput(gInput.data(), gInput.size());
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begun;
  counts.fSeconds = std::max(counts.fSeconds, took.count());
  counts.fAllocation = std::max(counts.fAllocation, NSTest::LargestAllocation());
  ++counts.fInputs;
}

void Sweep(const CBytes& file, CCounts& counts) {
  for (std::size_t length = 0; length <= file.size(); ++length) {
    Try({file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length)}, counts);
  }
  CBytes turned = file;
  for (std::size_t bit = 0; bit < file.size() * 8; ++bit) {
    turned[bit / 8] = static_cast<std::uint8_t>(file[bit / 8] ^ (0x80U >> bit % 8));
    Try(turned, counts);
    turned[bit / 8] = file[bit / 8];
  }
}

}  // namespace

int main(int count, char** names) {
  std::signal(SIGABRT, KeepInput);
  CCounts counts;
  for (int i = 1; i < count; ++i) {
    std::ifstream file(names[i], std::ios::binary);
    Sweep({std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()}, counts);
  }
  std::printf("{\"inputs\": %zu, \"greatest_allocation\": %zu, \"slowest_ms\": %.1f}\n",
              counts.fInputs, counts.fAllocation, counts.fSeconds * 1000);
  const bool isBounded =
      counts.fAllocation <= kGreatestAllocation && counts.fSeconds <= kGreatestSeconds;
  return counts.fInputs > 500 && isBounded ? 0 : 1;
}
