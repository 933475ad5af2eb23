#include "platform/windowing/faultReport.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

#include "platform/backend.h"

namespace kelvora {

namespace {
bool faultReported = false;
std::string noted;
std::string recordingFile;
FaultBox* faultBox = nullptr;
}  // namespace

void noteForReport(std::string what) { noted = std::move(what); }

void nameRecording(std::string file) { recordingFile = std::move(file); }

bool isFaultReported() { return faultReported; }
void setFaultBox(FaultBox* box) { faultBox = box; }

void reportFault(const char* what) {
  faultReported = true;
  const std::string error = std::string("Run-time error: ") + what;
  std::fprintf(stderr, "kelvora: %s\n", error.c_str());
  const std::string before = noted.empty() ? std::string() : "Just before: " + noted + ".\n";
  if (faultBox) {
    const std::string proof = recordingFile.empty() ? "what you did last" : "the recording " + recordingFile;
    faultBox(error, before + "Kelvora " + appVersionText() + " has to end. If you report this, add " + proof + ".");
  }
  std::_Exit(1);
}

}  // namespace kelvora
