#include <benchmark/benchmark.h>
#include <cstdlib>
#include <exception>
#include <iostream>

#include "bench/Coder.h"

namespace {

using namespace NSBench;

/// Of each kind of samples.
constexpr std::size_t kLimit = 60'000'000;

std::vector<CCoder> AllCoders() {
  std::vector<CCoder> all = DWOPCoders();
  for (auto& coders : {FlacCoders(), WavPackCoders()}) {
    all.insert(all.end(), coders.begin(), coders.end());
  }
  return all;
}

/// Every run tells the bytes of the plain samples, and their ratio to those of the stream.
void Report(benchmark::State& state, const CSignal& signal, const Bytes& stream) {
  state.counters["pcm_bytes"] = static_cast<double>(signal.Bytes());
  state.counters["ratio"] =
      static_cast<double>(signal.Bytes()) / static_cast<double>(stream.size());
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(signal.Bytes()));
}

void Encode(benchmark::State& state, const CCoder& coder, const CSignal& signal) {
  // All coders write into memory that has been written to before.
  static Bytes output;
  output.resize(signal.Bytes());
  for (auto run : state) {
    output.clear();
    coder.fEncode(signal, output);
  }
  Report(state, signal, output);
}

void Decode(benchmark::State& state, const CDecoder& decoder, const CSignal& signal,
            const Bytes& stream) {
  for (auto run : state) decoder.fDecode(stream, signal, nullptr);
  CSignalCheck check(signal);
  decoder.fDecode(stream, signal, &check);
  if (!check.Passed()) state.SkipWithError("what was decoded differs");
  Report(state, signal, stream);
}

void Register(const CCoder& coder, const CSignal& signal) {
  const auto add = [&signal](const std::string& name, auto function) {
    benchmark::RegisterBenchmark((name + "/" + signal.fKind).c_str(), function)
        ->Iterations(1)
        ->Unit(benchmark::kMillisecond);
  };
  add("encode/" + coder.fName, [&](benchmark::State& state) { Encode(state, coder, signal); });
  Bytes stream;
  coder.fEncode(signal, stream);
  for (const CDecoder& decoder : coder.fDecoders) {
    add("decode/" + decoder.fName,
        [&, stream](benchmark::State& state) { Decode(state, decoder, signal, stream); });
  }
}

int Run(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (argc > 2) {
    std::cerr << "CodecBench [FOLDER] [--benchmark_...]: the folder holds WAVE and AIFF files; "
                 "without one the samples are generated\n";
    return EXIT_FAILURE;
  }
  const std::vector<CSignal> signals =
      argc == 2 ? SignalsOfFolder(argv[1], kLimit) : GeneratedSignals();
  const std::vector<CCoder> coders = AllCoders();
  for (const CSignal& signal : signals) {
    for (const CCoder& coder : coders) Register(coder, signal);
  }
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return EXIT_SUCCESS;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const std::exception& failure) {
    std::cerr << failure.what() << "\n";
    return EXIT_FAILURE;
  }
}
