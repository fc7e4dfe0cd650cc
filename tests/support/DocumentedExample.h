#pragma once

#include <cstdint>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace NSTest {

/// The bytes of the first example in a format's page of docs/formats: between an offset and ";" on
/// each line.
inline std::vector<std::uint8_t> DocumentedExample(const std::string& pageName) {
  std::ifstream page(TAMBRA_TEST_DATA "/../../docs/formats/" + pageName);
  std::vector<std::uint8_t> bytes;
  std::string line;
  while (std::getline(page, line) && line != "```") continue;
  while (std::getline(page, line) && line != "```") {
    std::istringstream text(line.substr(0, line.find(';')));
    std::string token;
    if (!(text >> token)) continue;
    EXPECT_EQ(std::stoul(token, nullptr, 16), bytes.size()) << line;
    while (text >> token) bytes.push_back(static_cast<std::uint8_t>(std::stoi(token, nullptr, 16)));
  }
  return bytes;
}

}  // namespace NSTest
