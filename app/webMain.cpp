#include "core/startUp.h"
#include "platform/web/webBackend.h"

int main() { kelvora::runInPage(kelvora::modMain::startGame); }
