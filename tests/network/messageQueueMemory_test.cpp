#include <gtest/gtest.h>

#include <string>

#include "network/messageQueue.h"
#include "tests/support/allocatedBytes.h"

namespace kelvora {
namespace {

TEST(MessageQueueMemory, EntriesThatGrowAreBounded) {
  const std::size_t before = allocatedBytes();
  MessageQueue queue;
  const std::string part(std::size_t{64} << 10, 'x');
  for (int entry = 0; entry < 100; ++entry) {
    queue.startEntry();
    for (int i = 0; i < 17; ++i) queue.append(part);
  }
  // A hundred times 1 MiB and a byte don't fit into 32 MiB. A string that has grown by one byte takes twice its length.
  EXPECT_LT(allocatedBytes() - before, std::size_t{66} << 20);
}

}  // namespace
}  // namespace kelvora
