// Finishes the context table ("#IVB") of a compiled help file. The compiler leaves out the number
// 0, for which the project writes a stand-in, and names topics by their full path on the computer
// that compiled them. The table lies in the compressed part; its finished form takes the place of
// the compiler's note about itself, which is stored as it is.

#include <chm_lib.h>

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace {

constexpr std::uint32_t kStandInForZero = 10000;
constexpr char kContexts[] = "/#IVB";
constexpr char kStrings[] = "/#STRINGS";
constexpr char kNote[] = "/_#_README_#_";

void Require(bool condition, const char* what) {
  if (!condition) throw std::runtime_error(what);
}

std::uint64_t Number(const std::string& bytes, std::size_t offset, std::size_t size) {
  std::uint64_t number = 0;
  for (std::size_t i = size; i > 0; --i) {
    number = number << 8 | static_cast<unsigned char>(bytes.at(offset + i - 1));
  }
  return number;
}

void SetNumber(std::string& bytes, std::size_t offset, std::size_t number) {
  for (std::size_t i = 0; i < 4; ++i) {
    bytes.at(offset + i) = static_cast<char>(number >> (8 * i));
  }
}

std::string ReadObject(chmFile* file, const char* name) {
  chmUnitInfo unit{};
  Require(chm_resolve_object(file, name, &unit) == CHM_RESOLVE_SUCCESS, name);
  std::string bytes(unit.length, '\0');
  chm_retrieve_object(file, &unit, reinterpret_cast<unsigned char*>(bytes.data()), 0,
                      static_cast<LONGINT64>(bytes.size()));
  return bytes;
}

/// The table with the number 0 and with bare file names: each string offset moves behind the path.
std::string Completed(std::string contexts, const std::string& strings) {
  for (std::size_t entry = 4; entry + 8 <= contexts.size(); entry += 8) {
    if (Number(contexts, entry, 4) == kStandInForZero) SetNumber(contexts, entry, 0);
    const std::size_t begin = Number(contexts, entry + 4, 4);
    const std::size_t slash = strings.rfind('/', strings.find('\0', begin));
    if (slash != std::string::npos && slash >= begin) SetNumber(contexts, entry + 4, slash + 1);
  }
  return contexts;
}

/// Where the section number of a directory entry stands: behind the name and its length.
std::size_t EntryOf(const std::string& bytes, const std::string& name) {
  const std::size_t place = bytes.find(static_cast<char>(name.size()) + name);
  Require(place != std::string::npos, "no such directory entry");
  return place + 1 + name.size();
}

/// Gives the table the note's bytes and leaves the note the rest. Every number in the directory
/// keeps its width, so that nothing moves.
void Replace(std::string& bytes, const std::string& contexts, std::size_t note_size) {
  constexpr std::size_t kDataOffset = 0x58;
  const std::size_t table = EntryOf(bytes, kContexts);
  const std::size_t note = EntryOf(bytes, kNote);
  const bool as_expected = bytes.at(table) == 1 && bytes.at(table + 1) == 0 &&
                           bytes.at(note) == 0 && bytes.at(note + 1) == 0 && note_size >= 128 &&
                           contexts.size() < 128 && note_size - contexts.size() < 128;
  Require(as_expected, "the directory is not laid out as expected");
  bytes.at(table) = 0;
  bytes.at(note + 1) = static_cast<char>(contexts.size());
  bytes.at(note + 2) = static_cast<char>(0x80);
  bytes.at(note + 3) = static_cast<char>(note_size - contexts.size());
  const std::size_t data = Number(bytes, kDataOffset, 8);
  bytes.replace(data, note_size, note_size, ' ');
  bytes.replace(data, contexts.size(), contexts);
}

void Complete(const std::string& path) {
  chmFile* file = chm_open(path.c_str());
  Require(file != nullptr, "not a compiled help file");
  const std::string contexts = Completed(ReadObject(file, kContexts), ReadObject(file, kStrings));
  const std::size_t note_size = ReadObject(file, kNote).size();
  chm_close(file);

  std::ifstream in(path, std::ios::binary);
  std::string bytes(std::istreambuf_iterator<char>(in), {});
  Replace(bytes, contexts, note_size);
  std::ofstream out(path, std::ios::binary);
  out << bytes;
  Require(out.flush().good(), "can not write the file");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: complete_contexts FILE.chm\n");
    return 2;
  }
  try {
    Complete(argv[1]);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "complete_contexts: %s: %s\n", argv[1], error.what());
    return 1;
  }
  return 0;
}
