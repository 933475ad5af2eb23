#include "base/fault.h"

#include <gtest/gtest.h>

namespace kelvora {
namespace {

TEST(Fault, HasOneMessagePerCause) {
  const auto wording = [](void (*raise)()) -> std::string {
    try {
      raise();
    } catch (const RuntimeFault& fault) {
      return fault.what();
    }
    return "";
  };
  EXPECT_EQ(wording(raiseOverflow), "Overflow");
  EXPECT_EQ(wording(raiseSubscriptOutOfRange), "Subscript out of range");
  EXPECT_EQ(wording(raiseTypeMismatch), "Type mismatch");
  EXPECT_EQ(wording(raiseInvalidPropertyValue), "Invalid property value");
  EXPECT_EQ(wording(raiseOutOfMemory), "Out of memory");
}

TEST(ResumeNext, SkipsAFailingStatementAndRunsTheNext) {
  int done = 0;
  resumeNext([&] {
    done += 1;
    raiseOverflow();
    done += 10;
  });
  resumeNext([&] { done += 100; });
  EXPECT_EQ(done, 101);
}

TEST(ResumeNext, LetsOtherExceptionsPass) {
  EXPECT_THROW(resumeNext([] { throw std::logic_error("not a fault of the game"); }), std::logic_error);
}

}  // namespace
}  // namespace kelvora
