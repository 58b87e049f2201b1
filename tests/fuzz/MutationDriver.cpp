#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// mutation_driver FOLDER ROUNDS: gives a fuzz target the files of a folder and so many mutations of
// them, always the same ones. For compilers that have no fuzzer of their own.

namespace {

using Bytes = std::string;

std::vector<Bytes> seedsIn(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> paths;
  for (const auto& entry : std::filesystem::directory_iterator(folder))
    paths.push_back(entry.path());
  std::ranges::sort(paths);
  std::vector<Bytes> seeds;
  for (const auto& path : paths) {
    std::ifstream stream(path, std::ios::binary);
    seeds.emplace_back(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
  }
  return seeds;
}

class Mutator {
 public:
  explicit Mutator(std::vector<Bytes> seeds) : seeds_(std::move(seeds)) {}

  Bytes next() {
    Bytes bytes = seeds_[below(seeds_.size())];
    for (std::size_t count = below(6) + 1; count > 0; --count) mutate(bytes);
    return bytes;
  }

 private:
  std::size_t below(std::size_t end) { return random_() % end; }

  void mutate(Bytes& bytes) {
    constexpr std::array<std::string_view, 16> words{"\n",
                                                     "\r\n ",
                                                     ":",
                                                     ";",
                                                     "-1",
                                                     "0",
                                                     "99999999999",
                                                     "BEGIN:VEVENT\n",
                                                     "END:VCALENDAR\n",
                                                     "/",
                                                     ";COUNT=1000000",
                                                     ";BYSETPOS=-1",
                                                     ";BYMONTHDAY=31",
                                                     ";INTERVAL=32767",
                                                     "SECONDLY",
                                                     "P9999W"};
    const std::size_t at = below(bytes.size() + 1);
    const Bytes& other = seeds_[below(seeds_.size())];
    switch (below(5)) {
      case 0:
        if (at < bytes.size()) bytes[at] = static_cast<char>(below(256));
        return;
      case 1:
        bytes.erase(at, below(40));
        return;
      case 2:
        bytes.insert(at, words[below(words.size())]);
        return;
      case 3:
        bytes.insert(at, other.substr(below(other.size() + 1), below(200)));
        return;
      default:
        bytes.resize(at);
        return;
    }
  }

  std::vector<Bytes> seeds_;
  std::mt19937 random_{2026};
};

void run(const Bytes& bytes) {
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 3) return EXIT_FAILURE;
  const std::vector<Bytes> seeds = seedsIn(arguments[1]);
  if (seeds.empty()) return EXIT_FAILURE;
  for (const Bytes& seed : seeds) run(seed);
  Mutator mutator(seeds);
  const int rounds = std::atoi(arguments[2]);
  for (int round = 0; round < rounds; ++round) run(mutator.next());
  std::printf("%zu seeds, %d mutations\n", seeds.size(), rounds);
  return EXIT_SUCCESS;
}
