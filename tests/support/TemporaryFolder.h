#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace NSTest {

/// A path whose text is UTF-8, on systems with another code page, too.
struct CUtf8Path : std::filesystem::path {
  CUtf8Path(const std::string& text) : path(std::u8string(text.begin(), text.end())) {}
  CUtf8Path(const char* text) : CUtf8Path(std::string(text)) {}
  CUtf8Path(path other) : path(std::move(other)) {}
};

/// The UTF-8 of a path.
inline std::string Utf8Of(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

/// An empty folder below the system's temporary one, removed with all it holds at the end. Names
/// are paths relative to it; missing parents of a written file are made.
class CTemporaryFolder {
 public:
  CTemporaryFolder() {
    std::random_device random;
    do {
      fPath = std::filesystem::canonical(std::filesystem::temp_directory_path()) /
              ("tambra-test-" + std::to_string(random()) + std::to_string(random()));
    } while (!std::filesystem::create_directory(fPath));
  }
  CTemporaryFolder(const CTemporaryFolder&) = delete;
  CTemporaryFolder& operator=(const CTemporaryFolder&) = delete;
  ~CTemporaryFolder() {
    std::error_code ignored;  // a leftover folder must not end the test program
    std::filesystem::remove_all(fPath, ignored);
  }

  const std::filesystem::path& Path() const { return fPath; }

  std::filesystem::path MakeFolder(const CUtf8Path& name) const {
    std::filesystem::create_directories(fPath / name);
    return fPath / name;
  }

  /// Writes (or replaces) a file and returns its full path.
  std::filesystem::path Write(const CUtf8Path& name, std::string_view bytes) const {
    const std::filesystem::path path = fPath / name;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file) throw std::runtime_error("cannot write " + path.string());
    return path;
  }
  std::filesystem::path Write(const CUtf8Path& name, std::span<const std::uint8_t> bytes) const {
    return Write(name, std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
  }
  std::filesystem::path Write(const CUtf8Path& name, const std::vector<std::uint8_t>& bytes) const {
    return Write(name, std::span<const std::uint8_t>(bytes));
  }

  std::vector<std::uint8_t> Read(const CUtf8Path& name) const {
    std::ifstream file(fPath / name, std::ios::binary);
    if (!file) throw std::runtime_error("cannot read " + (fPath / name).string());
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }
  std::string ReadText(const CUtf8Path& name) const {
    const std::vector<std::uint8_t> bytes = Read(name);
    return {bytes.begin(), bytes.end()};
  }

 private:
  std::filesystem::path fPath;
};

}  // namespace NSTest
