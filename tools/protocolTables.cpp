// Prints the table of messages for programs that aren't written in C++. "python" prints a module with ids, fields and
// frame(). "dictionary" prints words that a fuzzer inserts into its inputs.

#include <cctype>
#include <iomanip>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <string_view>

#include "protocol/messages.h"
#include "protocol/wireFormat.h"

namespace {

using namespace kelvora;

/// "msgPlayerJoined" becomes PLAYER_JOINED.
std::string pythonName(std::string_view name) {
  std::string words;
  for (const char c : name.substr(std::string_view("msg").size())) {
    const auto letter = static_cast<unsigned char>(c);
    if (!words.empty() && std::isupper(letter) != 0) words += '_';
    words += static_cast<char>(std::toupper(letter));
  }
  return words;
}

std::string_view typeName(wire::FieldType type) {
  constexpr std::string_view names[] = {"int16", "int32", "single", "real", "text"};
  return names[static_cast<int>(type)];
}

int code(char c) { return static_cast<unsigned char>(c); }

void writePython(std::ostream& out) {
  out << "\"\"\"The game's messages: a copy of protocol/messages.h, made by the build.\"\"\"\n\n"
      << "START, END, SEPARATOR = " << code(wire::frameStart) << ", " << code(wire::frameEnd) << ", "
      << code(wire::fieldSeparator) << "\n\n";
  std::map<int, std::string> names;
  for (const wire::Message& message : wire::messages) names[message.id] = pythonName(message.name);
  for (const auto& [id, name] : names) out << name << " = " << id << "\n";
  for (const auto direction : {wire::Direction::toServer, wire::Direction::toClient}) {
    out << "\n# The types of the fields, by id.\n"
        << (direction == wire::Direction::toServer ? "TO_SERVER" : "TO_CLIENT") << " = {\n";
    for (const wire::Message& message : wire::messages) {
      if (message.direction != direction) continue;
      out << "    " << pythonName(message.name) << ": [";
      const char* comma = "";
      for (const wire::Field& field : message.fields()) {
        out << comma << '"' << typeName(field.type) << '"';
        comma = ", ";
      }
      out << "],\n";
    }
    out << "}\n";
  }
  out << R"(

def frame(identifier, *fields):
    """One frame. Fields that are not bytes are written as text."""
    texts = [field if isinstance(field, bytes) else str(field).encode("cp1252") for field in fields]
    return bytes([START, identifier]) + bytes([SEPARATOR]).join(texts) + bytes([END])
)";
}

/// Writes a word in libFuzzer's format.
void writeWord(std::ostream& out, std::string_view word) {
  std::ostringstream escaped;
  for (const char c : word) escaped << "\\x" << std::hex << std::setw(2) << std::setfill('0') << code(c);
  out << '"' << escaped.str() << "\"\n";
}

/// A typical value for a field of this type.
std::string_view sample(wire::FieldType type) {
  constexpr std::string_view samples[] = {"1", "70000", "50000.5", "10", "Ann"};
  return samples[static_cast<int>(type)];
}

void writeDictionary(std::ostream& out) {
  for (const wire::Message& message : wire::messages) {
    std::string frame{wire::frameStart, static_cast<char>(message.id)};
    writeWord(out, frame);
    std::string_view separator;
    for (const wire::Field& field : message.fields()) {
      frame.append(separator).append(sample(field.type));
      separator = {&wire::fieldSeparator, 1};
    }
    writeWord(out, frame + wire::frameEnd);
  }
  for (const std::string_view number : {"0", "-1", "32767", "-32768", "32768", "2147483648", ".5", "1E+38", "1E+400"}) {
    writeWord(out, wire::fieldSeparator + std::string(number));
  }
}

}  // namespace

int main(int argc, char** argv) {
  const std::string_view form = argc == 2 ? argv[1] : "";
  if (form == "python") {
    writePython(std::cout);
  } else if (form == "dictionary") {
    writeDictionary(std::cout);
  } else {
    std::cerr << "Usage: protocolTables python|dictionary\n";
    return 2;
  }
  return std::cout.flush() ? 0 : 1;
}
