#include "base/fault.h"

namespace kelvora {

void raiseOverflow() { throw RuntimeFault("Overflow"); }
void raiseSubscriptOutOfRange() { throw RuntimeFault("Subscript out of range"); }
void raiseTypeMismatch() { throw RuntimeFault("Type mismatch"); }
void raiseInvalidPropertyValue() { throw RuntimeFault("Invalid property value"); }
void raiseOutOfMemory() { throw RuntimeFault("Out of memory"); }

}  // namespace kelvora
