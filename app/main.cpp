#include "app/recordToFile.h"
#include "platform/desktop/runDesktop.h"

int main(int argc, char** argv) { return kelvora::runDesktop(argc, argv, kelvora::startGameRecorded); }
