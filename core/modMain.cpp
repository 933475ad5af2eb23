#include "core/modMain.h"

namespace kelvora::modMain {

World world;

}  // namespace kelvora::modMain
