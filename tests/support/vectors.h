#pragma once

#include <cstdlib>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <vector>

namespace qv3::test {

/// The folder of the test vectors: $QV3_VECTORS if it is set, so that the same tests can be run
/// over another set, else the set that lies in the tree.
inline std::string vectorFolder() {
  if (const char* other = std::getenv("QV3_VECTORS"); other != nullptr && *other != '\0') {
    return other;
  }
  const char* data = std::getenv("QV3_TEST_DATA");
  if (data == nullptr) throw std::runtime_error("QV3_TEST_DATA is not set");
  return std::string(data) + "/vectors";
}

/// All objects of a ".jsonl" file, given by its name within the folder. A file that is missing or
/// holds nothing throws: a run without cases must not pass.
inline std::vector<nlohmann::json> readVectors(const std::string& name) {
  const std::string path = vectorFolder() + "/" + name;
  std::ifstream in(path);
  std::vector<nlohmann::json> vectors;
  for (std::string line; std::getline(in, line);) {
    if (!line.empty()) vectors.push_back(nlohmann::json::parse(line));
  }
  if (vectors.empty()) throw std::runtime_error("No test vectors in " + path);
  return vectors;
}

/// Vector texts hold one character a byte, U+0000..U+00FF; this gives the bytes.
inline std::string bytesOf(const nlohmann::json& text) {
  const auto& utf8 = text.get_ref<const std::string&>();
  std::string bytes;
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    const auto lead = static_cast<unsigned char>(utf8[i]);
    if (lead < 0x80) {
      bytes += utf8[i];
      continue;
    }
    if (lead > 0xc3 || i + 1 == utf8.size()) throw std::runtime_error("No byte: " + text.dump());
    const auto next = static_cast<unsigned char>(utf8[++i]);
    bytes += static_cast<char>(((lead & 0x03) << 6) | (next & 0x3f));
  }
  return bytes;
}

}  // namespace qv3::test
