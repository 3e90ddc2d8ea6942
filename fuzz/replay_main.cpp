#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz.h"

namespace {

namespace fs = std::filesystem;

// In the order of their names, so that two runs do the same.
std::vector<fs::path> filesOf(const fs::path& path) {
  if (!fs::is_directory(path)) return {path};
  std::vector<fs::path> files;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(path)) {
    if (entry.is_regular_file()) files.push_back(entry.path());
  }
  std::ranges::sort(files);
  return files;
}

// The name comes first, as nothing can be printed for an input that ends the program.
bool replay(const fs::path& path) {
  std::printf("%s\n", path.c_str());
  std::fflush(stdout);
  std::ifstream stream(path, std::ios::binary);
  const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
  if (!stream) return false;
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  return true;
}

}  // namespace

// Options are passed over: the same command line serves a program that was linked with a fuzzer.
int main(int argc, char** argv) {
  std::size_t count = 0;
  for (int i = 1; i < argc; ++i) {
    if (argv[i][0] == '-') continue;
    for (const fs::path& path : filesOf(argv[i])) {
      if (!replay(path)) {
        std::fprintf(stderr, "cannot read %s\n", path.c_str());
        return 2;
      }
      ++count;
    }
  }
  std::printf("%zu inputs\n", count);
  return count > 0 ? 0 : 2;
}
